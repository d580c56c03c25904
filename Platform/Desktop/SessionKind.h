#pragma once

namespace farview
{

/// Whether the windows of this session are the X server's own affair: not so where it only serves
/// the older programs of another display server.
bool isX11Session();

} // namespace farview
