// What the server says of the devices that are used beside the first, which any program of the
// user's can say.

#include "Common/Rules/FurtherDeviceRows.h"
#include "Tests/Fuzz/Expect.h"

using namespace farview;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(bytes, bytes + size);
    const auto devices = furtherDevices(&text);
    const std::string written = textOfFurtherDevices(devices);
    expect(furtherDevices(&written) == devices, "a list is read as it was written");
    expect(devices.size() <= mostFurtherDevices, "a list has a limit");
    const auto rows =
        furtherDeviceRows({.used = devices}, [](const std::string& key) { return key; });
    expect(rows.size() == devices.size(), "each device can be told");
    return 0;
}
