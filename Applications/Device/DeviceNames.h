#pragma once

#include <string>
#include <string_view>

namespace farview
{

/// The computer's host name as people would write it: without its domain, with blanks for dashes,
/// each word with a capital. "Computer" when nothing is left.
std::string readableDeviceName(const std::string& computerHostName);

/// A host name for the device alone, so that it never competes with the computer's own: the first
/// word of the computer's name and eight digits made of the machine's identity and the device's
/// name. The same on every start.
std::string ownDeviceHostName(const std::string& computerHostName, std::string_view machineIdentity,
                              std::string_view deviceName);

/// Whether the text can be announced as a service's name: 1 to 63 bytes of UTF-8 without control
/// characters.
bool isDeviceName(const std::string& text);

/// Whether the text is one label of a host name: 1 to 63 letters, digits and inner dashes.
bool isHostLabel(const std::string& text);

} // namespace farview
