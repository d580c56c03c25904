#include "Applications/Device/DeviceArguments.h"

#include "Applications/Device/DeviceNames.h"
#include "Link/Wire/LinkCodec.h"

#include <charconv>
#include <functional>
#include <map>

namespace farview
{

const char* const deviceUsage =
    R"(Usage: farview-device [options]
Makes this computer a virtual-screen device for Farview: announces it on the local network,
shows whether and by whom it is used, and accepts one host at a time.

  --name NAME         the name that people see (default: this computer's name)
  --host-name LABEL   the host name of the device alone (default: one of its own)
  --port PORT         where hosts connect (default 6001; 0: any free port). When it is taken,
                      a free one is announced; connecting by address works with 6001 only
  --headless          without a window
  --refuse REASON     refuse every host with this reason (for maintenance)
  --unless-seen SECONDS   end at once when another device is seen within that time
  --help, --version
)";

namespace
{

using Reader = std::function<bool(DeviceArguments&, const std::string& value)>;

bool readName(DeviceArguments& result, const std::string& value)
{
    result.name = value;
    return isDeviceName(value);
}

bool readHostName(DeviceArguments& result, const std::string& value)
{
    result.hostName = value;
    return isHostLabel(value);
}

template <typename Number> bool readNumber(const std::string& value, Number& number)
{
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, number);
    return !value.empty() && read.ec == std::errc() && read.ptr == end;
}

bool readPort(DeviceArguments& result, const std::string& value)
{
    return readNumber(value, result.port);
}

bool readRefusal(DeviceArguments& result, const std::string& value)
{
    result.refusal = value;
    return !value.empty() && plainLinkText(value, kLinkTextLimit) == value;
}

bool readUnlessSeen(DeviceArguments& result, const std::string& value)
{
    double seconds = 0;
    const bool good = readNumber(value, seconds) && seconds >= 0 && seconds <= 3600;
    result.unlessSeenWithin = seconds;
    return good;
}

const std::map<std::string, bool DeviceArguments::*>& flags()
{
    static const std::map<std::string, bool DeviceArguments::*> table{
        {"--headless", &DeviceArguments::isHeadless},
        {"--help", &DeviceArguments::wantsHelp},
        {"-h", &DeviceArguments::wantsHelp},
        {"--version", &DeviceArguments::wantsVersion},
    };
    return table;
}

const std::map<std::string, Reader>& readers()
{
    static const std::map<std::string, Reader> table{
        {"--name", readName},      {"--host-name", readHostName},     {"--port", readPort},
        {"--refuse", readRefusal}, {"--unless-seen", readUnlessSeen},
    };
    return table;
}

} // namespace

DeviceArguments readDeviceArguments(const std::vector<std::string>& arguments)
{
    DeviceArguments result;
    for (std::size_t index = 0; index < arguments.size() && result.mistake.empty(); ++index) {
        const std::string& argument = arguments[index];
        if (const auto flag = flags().find(argument); flag != flags().end()) {
            result.*(flag->second) = true;
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string option = argument.substr(0, equals);
        const auto reader = readers().find(option);
        const bool hasValue = equals != std::string::npos || index + 1 < arguments.size();
        if (reader == readers().end())
            result.mistake = "unknown option: " + option;
        else if (!hasValue)
            result.mistake = option + " needs a value";
        else if (!reader->second(result, equals == std::string::npos ? arguments[++index]
                                                                     : argument.substr(equals + 1)))
            result.mistake = option + " cannot have that value";
    }
    return result;
}

} // namespace farview
