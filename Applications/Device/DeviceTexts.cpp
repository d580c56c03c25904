#include "Applications/Device/DeviceTexts.h"

namespace farview
{

std::string deviceHeadline(const DeviceStatus& status)
{
    if (status.announcedName.empty())
        return "Not announced yet";
    return status.announcedName;
}

std::string deviceUseText(const DeviceStatus& status)
{
    if (status.usedBy)
        return "In use by the computer at " + *status.usedBy + ".";
    return "Not in use. Choose this device in Farview Preferences on another computer.";
}

std::string deviceOptionsText(const DeviceStatus& status)
{
    if (!status.options)
        return "";
    const auto line = [](const char* what, bool on) {
        return std::string(what) + (on ? ": on" : ": off");
    };
    return line("Touch", status.options->touch) + "\n" +
           line("Retina resolutions", status.options->retina) + "\n" +
           line("HiDPI resolutions", status.options->hiDPI) + "\n" +
           line("Windows move back", status.options->windowsMoveBack);
}

std::string deviceTroubleText(const DeviceStatus& status)
{
    const bool both = !status.trouble.empty() && !status.portWarning.empty();
    return status.trouble + (both ? "\n" : "") + status.portWarning;
}

} // namespace farview
