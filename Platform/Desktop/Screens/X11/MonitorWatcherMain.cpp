#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"

int main() { return farview::watchMonitors() ? 0 : 1; }
