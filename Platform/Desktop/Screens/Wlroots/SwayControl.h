#pragma once

#include "Platform/Desktop/Screens/Wlroots/CompositorControl.h"
#include "Platform/Desktop/Screens/Wlroots/SwayConnection.h"

namespace farview
{

/// sway's outputs. It names them itself, HEADLESS-2 for example.
class SwayControl final : public CompositorControl
{
public:
    /// Must live longer.
    explicit SwayControl(SwayConnection& sway) : mSway(sway) {}

    void create(Answer then) override;
    void configure(const OutputWish& wish, Answer then) override;
    void remove(const std::string& name, Answer then) override;

private:
    SwayConnection& mSway;
};

} // namespace farview
