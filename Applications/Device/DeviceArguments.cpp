#include "Applications/Device/DeviceArguments.h"

#include "Applications/Device/DeviceNames.h"
#include "Common/Rules/PairingReport.h"
#include "Link/Wire/LinkCodec.h"

#include <QRegularExpression>

namespace farview
{
namespace
{

const auto purpose = QStringLiteral(R"(
Makes this computer a virtual-screen device for Farview: announces it on the
local network, shows whether and by whom it is used, and accepts one host at a
time.
)");

const auto exitStatuses = QStringLiteral(R"(
Exit status:
   0  it did what it was asked for
   1  --accept: no device here shows these digits; --forget: there is no such
      computer, or several are
   2  wrong use
   3  there is no port to listen on; --accept: no session bus)");

const CommandLine::Options& options()
{
    static const CommandLine::Options list{
        {u"name"_qs, u"The name that people see (default: this computer's name)"_qs, u"NAME"_qs},
        {u"host-name"_qs, u"The host name of the device alone (default: one of its own)"_qs,
         u"LABEL"_qs},
        {u"port"_qs,
         u"Where hosts connect (default 6001; 0: any free port). When it is taken, a free one is "
         "announced; connecting by address works with 6001 only"_qs,
         u"PORT"_qs},
        {u"headless"_qs, u"Run without a window"_qs},
        {u"window"_qs,
         u"Show pictures in a window, smaller than the screen: for a host on this very desktop"_qs},
        {u"picture-file"_qs,
         u"Run without a window and write each picture of the host to this file (.png, .ppm), for "
         "diagnosis"_qs,
         u"FILE"_qs},
        {u"refuse"_qs, u"Refuse every host with this reason (for maintenance)"_qs, u"REASON"_qs},
        {u"unless-seen"_qs, u"End at once when another device is seen within that time"_qs,
         u"SECONDS"_qs},
        {u"pair-once"_qs,
         u"Let the next computer that asks use this device, for ten minutes: for a device that "
         "nobody can touch. Its digits are to be compared at the computer"_qs},
        {u"accept"_qs,
         u"Tell the device that runs here that the computer shows these digits, and end"_qs,
         u"DIGITS"_qs},
        {u"known"_qs, u"List the computers that may use this device, and end"_qs},
        {u"forget"_qs,
         u"Take the computer whose key begins so off that list, and end (8 digits or more)"_qs,
         u"KEY"_qs},
    };
    return list;
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

bool readDigits(DeviceArguments& result, const std::string& value)
{
    result.acceptedDigits = withoutBlanks(value);
    return arePairingDigits(*result.acceptedDigits);
}

bool readKey(DeviceArguments& result, const std::string& value)
{
    const QString key = QString::fromStdString(withoutBlanks(value)).toLower();
    static const QRegularExpression hexadecimal(QStringLiteral("\\A[0-9a-f]{8,64}\\z"));
    result.forgottenKey = key.toStdString();
    return hexadecimal.match(key).hasMatch();
}

} // namespace

DeviceArguments readDeviceArguments(const QStringList& words)
{
    CommandLine line(words, purpose, options(), exitStatuses);
    DeviceArguments result;
    line.read("picture-file",
              [&](const auto& value) { return !(result.pictureFile = value)->empty(); });
    result.isHeadless = line.has("headless") || result.pictureFile;
    result.isInWindow = line.has("window");
    line.read("name", [&](const auto& value) { return isDeviceName(*(result.name = value)); });
    line.read("host-name",
              [&](const auto& value) { return isHostLabel(*(result.hostName = value)); });
    line.read("port", [&](const auto& value) { return readNumber(value, result.port); });
    line.read("refuse", [&](const auto& value) { return readRefusal(result, value); });
    line.read("unless-seen", [&](const auto& value) { return readUnlessSeen(result, value); });
    result.pairsOnce = line.has("pair-once");
    line.read("accept", [&](const auto& value) { return readDigits(result, value); });
    result.listsKnown = line.has("known");
    line.read("forget", [&](const auto& value) { return readKey(result, value); });
    result.answer = line.answer();
    return result;
}

} // namespace farview
