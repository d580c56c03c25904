#pragma once

#include "Platform/Desktop/Screens/X11/InputDevices.h"
#include "Platform/Desktop/Screens/X11/RandrLayout.h"

#include <xcb/xcb.h>

#include <memory>

namespace farview
{

/// Where a device that reaches over the whole desktop has to be touched, so that it is this place
/// of the desktop.
DevicePlace devicePlace(double desktopX, double desktopY, RandrSize desktop);

/// Fingers and pen of an X server: passes them to devices of our own, once the server has found
/// these, and keeps the desktop from mapping the devices to a screen of its choice. One thread;
/// waits for the server where that is said.
class DeviceInput
{
public:
    /// Asks to be told of devices, and looks for those that are there. `devices` may be null.
    DeviceInput(xcb_connection_t* connection, std::unique_ptr<InputDevices> devices);

    /// True when the abilities may have changed. May wait.
    bool serve(const xcb_generic_event_t& event);
    bool hasTouch() const { return mHasTouch; }
    bool hasPen() const { return mHasPen; }

    /// Where it is on the desktop counts, and not where on a monitor.
    void touch(const TouchPoint& point);
    void pen(const PenState& state);

private:
    void listen();
    void measureDesktop();
    void look();
    void mapToDesktop(std::uint16_t device);

    xcb_connection_t* mConnection;
    std::unique_ptr<InputDevices> mDevices;
    RandrSize mDesktop;
    std::uint8_t mOpcode = 0;
    xcb_atom_t mMatrix = 0;
    xcb_atom_t mFloat = 0;
    bool mHasTouch = false;
    bool mHasPen = false;
};

} // namespace farview
