#pragma once

#include "Platform/Text.h"

namespace farview
{

/// Unicode case, the same in every language of the desktop.
class DesktopText final : public Text
{
public:
    std::string lowercase(std::string_view text) const override;
    std::string uppercase(std::string_view text) const override;
};

} // namespace farview
