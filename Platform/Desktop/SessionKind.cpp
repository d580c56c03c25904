#include "Platform/Desktop/SessionKind.h"

#include <QtGlobal>

namespace farview
{

bool isX11Session()
{
    return qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           !qEnvironmentVariableIsEmpty("DISPLAY");
}

} // namespace farview
