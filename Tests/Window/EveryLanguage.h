#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace farview::test
{

/// The languages that a window is tested in.
inline const auto everyLanguage =
    testing::Values("en", "de", "es", "fr", "it", "pt-BR", "ja", "zh-Hans");

/// The name of a test has no "-".
inline std::string nameOfLanguage(const testing::TestParamInfo<const char*>& each)
{
    std::string name = each.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

} // namespace farview::test
