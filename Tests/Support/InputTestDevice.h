#pragma once

#include "Platform/Desktop/Screens/X11/InputDevices.h"

#include <memory>
#include <string>

namespace farview
{

/// The touch screen and the pen of a private X server, in the place of devices of the kernel. The
/// server's driver for them takes one connection in its life: make one of these for one server.
class InputTestDevices
{
public:
    /// `folder` is the server's.
    explicit InputTestDevices(const std::string& folder);

    /// Gives away devices that write there; they may be given away any number of times.
    MakeInputDevices maker() const;

private:
    std::shared_ptr<InputDevices> mDevices;
};

} // namespace farview
