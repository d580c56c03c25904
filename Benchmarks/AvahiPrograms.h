#pragma once

namespace farview
{

/// The least that a program on libavahi can do, as the yardstick: it browses for devices, resolves
/// each as soon as it is seen and writes a line "TIME NAME" to standard output when it is resolved.
/// Runs until its standard input ends. The exit status.
int runBareBrowser();

/// Announces a device for each line on standard input, with the line as its name, until its
/// standard input ends. The exit status.
int runAnnouncer();

} // namespace farview
