#include "Applications/Doctor/Finding.h"

#include <array>
#include <cstddef>

namespace farview
{
namespace
{

struct AreaNames {
    const char* name;
    const char* title;
};

// In the order of the enumeration.
constexpr std::array areas = {
    AreaNames{"versions", "Versions"},
    AreaNames{"bus", "Message bus"},
    AreaNames{"discovery", "Finding devices"},
    AreaNames{"driver", "Driver"},
    AreaNames{"processes", "Programs in the background"},
    AreaNames{"preferences", "Settings on disk"},
    AreaNames{"accessibility", "Accessibility"},
    AreaNames{"polkit", "Administrator's rights"},
    AreaNames{"display", "Display"},
    AreaNames{"screen", "Additional screen"},
    AreaNames{"pairing", "Confirmed devices"},
    AreaNames{"devices", "Devices"},
};
static_assert(areas.size() == static_cast<std::size_t>(Area::devices) + 1);

} // namespace

const char* nameOf(Area area) { return areas[static_cast<std::size_t>(area)].name; }

const char* titleOf(Area area) { return areas[static_cast<std::size_t>(area)].title; }

const char* nameOf(Severity severity)
{
    switch (severity) {
    case Severity::ok:
        return "ok";
    case Severity::note:
        return "note";
    case Severity::problem:
        break;
    }
    return "problem";
}

std::string identifierOf(const Finding& finding)
{
    return std::string(nameOf(finding.area)) + "." + finding.name;
}

} // namespace farview
