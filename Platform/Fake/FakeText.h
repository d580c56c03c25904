#pragma once

#include "Platform/Text.h"

namespace farview
{

/// Unicode's simple case mapping, one character to one character, by the C library's "C.UTF-8"
/// locale. Full mappings ("ß" to "SS") are left alone, and so are bytes that are not UTF-8.
class FakeText final : public Text
{
public:
    std::string lowercase(std::string_view text) const override;
    std::string uppercase(std::string_view text) const override;
};

} // namespace farview
