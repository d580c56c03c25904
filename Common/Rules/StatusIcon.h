#pragma once

namespace farview
{

/// What the status item's icon tells at a glance.
enum class StatusIcon { off, on, connected, question, trouble };

struct StatusIconInputs {
    bool driverInstalled = false;
    long currentState = 0;      ///< as stored: 0 off, 1 on, 2 trouble
    bool connected = false;     ///< to whatever device
    bool connectFailed = false; ///< the last attempt to connect, and nothing was tried since
    bool asked = false;         ///< whether a device shows the same digits
};

StatusIcon statusIcon(const StatusIconInputs& inputs);

} // namespace farview
