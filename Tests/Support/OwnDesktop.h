#pragma once

/// Whether this process is one that `enterOwnDesktop` started.
bool isInsideOwnDesktop();

/// Replaces this process by one with the same arguments inside a private desktop: display, session
/// bus, accessibility bus, home folder. Returns only when it fails, with the status to end with.
int enterOwnDesktop(int argc, char* argv[]);
