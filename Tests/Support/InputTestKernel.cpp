// Takes the place of the kernel in a program that is linked with it: its touch screen and its pen
// are those of the private X server whose folder $FARVIEW_TEST_INPUT names.

#include "Tests/Support/InputTestDevice.h"

#include <cstdlib>

namespace farview
{

std::unique_ptr<InputDevices> makeKernelDevices()
{
    static const InputTestDevices devices(std::getenv("FARVIEW_TEST_INPUT"));
    return devices.maker()();
}

} // namespace farview
