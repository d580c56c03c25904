#include "Platform/Desktop/Screens/X11/MonitorWatcher.h"

#include <cstdlib>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    return farview::watchMonitorOf(static_cast<pid_t>(std::strtol(argv[1], nullptr, 10))) ? 0 : 1;
}
