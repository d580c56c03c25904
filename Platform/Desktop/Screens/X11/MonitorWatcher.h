#pragma once

#include "Platform/Posix/FileDescriptor.h"

#include <string>

namespace farview
{

/// Starts a small program that waits for our end and then undoes the monitors that we left, and
/// lifts the keys and buttons that were pressed for their devices. It holds the reading end of a
/// pipe whose writing end nobody but us has, so it notices any kind of death at once, and the end
/// of what is returned here as well. Signals do not end it, for whoever ends a whole session means
/// us. Nothing open is returned when it cannot be started.
FileDescriptor startMonitorWatcher(const std::string& program);

/// Tells it that nothing is held down any more: others may press keys in the same way.
void sayThatAllIsReleased(const FileDescriptor& watcher);

/// What that program does: becomes nobody's child, waits until nobody holds the other end of its
/// input, releases what is down, and undoes the monitors that are left. True when none is.
bool watchMonitors();

} // namespace farview
