#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"

int main() { return farview::watchMonitor() ? 0 : 1; }
