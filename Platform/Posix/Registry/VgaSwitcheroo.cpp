#include "Platform/Posix/Registry/VgaSwitcheroo.h"

#include "Platform/Posix/FileDescriptor.h"
#include "Platform/Posix/WholeFile.h"

#include <fcntl.h>

#include <algorithm>
#include <charconv>
#include <sstream>

namespace farview
{
namespace
{

constexpr GraphicsControl::Object masterPortNumber = 1;
constexpr GraphicsControl::Object serviceNumber = 2;

const PropertyList matchingService =
    PropertyList::Dictionary{{"IOProviderClass", "AppleGraphicsControl"}};

enum Selector : std::uint32_t { opened = 0, closed = 1, setMuxState = 2, getMuxState = 3 };
enum State : std::uint64_t { features = 0, forceSwitch = 2, selectProcessor = 4 };
constexpr std::uint64_t muxDispatch = 1;
constexpr std::uint64_t canSwitch = 1 << 2;

} // namespace

VgaSwitcheroo::VgaSwitcheroo(const std::string& debugFolder)
    : mSwitch(debugFolder + "/vgaswitcheroo/switch")
{
}

/// "0:IGD:+:Pwr:0000:00:02.0": number, kind, "+" when it is in use. Their sound parts
/// ("DIS-Audio") have lines of their own.
std::optional<VgaSwitcheroo::Processor> VgaSwitcheroo::processorIn(const std::string& line)
{
    Processor processor;
    const char* end = line.data() + line.size();
    const auto number = std::from_chars(line.data(), end, processor.number);
    const std::string_view rest(number.ptr, static_cast<std::size_t>(end - number.ptr));
    if (number.ec != std::errc{} || rest.size() < 7 || rest[0] != ':' || rest[4] != ':')
        return std::nullopt;
    processor.kind = rest.substr(1, 3);
    processor.isActive = rest[5] == '+';
    if ((processor.kind != "IGD" && processor.kind != "DIS") || rest[6] != ':')
        return std::nullopt;
    return processor;
}

std::vector<VgaSwitcheroo::Processor> VgaSwitcheroo::processors() const
{
    constexpr std::size_t largestFile = 4096;
    const auto file = readWholeFile(mSwitch, largestFile);
    std::vector<Processor> found;
    if (file.status != WholeFile::Status::read)
        return found;
    std::istringstream lines(file.bytes);
    for (std::string line; std::getline(lines, line);) {
        if (auto processor = processorIn(line))
            found.push_back(std::move(*processor));
    }
    return found;
}

GraphicsControl::Result VgaSwitcheroo::masterPort(Object& port)
{
    port = masterPortNumber;
    return success;
}

std::optional<PropertyList> VgaSwitcheroo::serviceMatching(const std::string& className)
{
    return PropertyList::Dictionary{{"IOProviderClass", className}};
}

GraphicsControl::Result
VgaSwitcheroo::getMatchingServices(Object port, const PropertyList& matching, Object& iterator)
{
    if (port != masterPortNumber)
        return badArgument;
    iterator = mNextObject++;
    mIterators[iterator] = matching == matchingService && isThere();
    return success;
}

GraphicsControl::Object VgaSwitcheroo::iteratorNext(Object iterator)
{
    const auto found = mIterators.find(iterator);
    if (found == mIterators.end() || !found->second)
        return 0;
    found->second = false;
    return serviceNumber;
}

void VgaSwitcheroo::retain(Object) {}

void VgaSwitcheroo::release(Object object) { mIterators.erase(object); }

GraphicsControl::Result VgaSwitcheroo::serviceOpen(Object service, std::uint32_t,
                                                   Object& connection)
{
    if (service != serviceNumber || !isThere())
        return noSuchDevice;
    connection = mNextObject++;
    mConnections.insert(connection);
    return success;
}

GraphicsControl::Result VgaSwitcheroo::serviceClose(Object connection)
{
    return mConnections.erase(connection) > 0 ? success : notOpen;
}

GraphicsControl::Result VgaSwitcheroo::addInterestNotification(Object, Object, const std::string&,
                                                               InterestCallback, void*)
{
    return unsupported;
}

GraphicsControl::Result VgaSwitcheroo::callScalarMethod(Object connection, std::uint32_t selector,
                                                        std::span<const std::uint64_t> input,
                                                        std::span<std::uint64_t>& output)
{
    if (!mConnections.contains(connection))
        return notOpen;
    if (!isThere())
        return noSuchDevice;
    switch (selector) {
    case Selector::opened:
    case Selector::closed:
        return success;
    case Selector::setMuxState:
        return setState(input);
    case Selector::getMuxState:
        return getState(input, output);
    default:
        return unsupported;
    }
}

GraphicsControl::Result VgaSwitcheroo::getState(std::span<const std::uint64_t> input,
                                                std::span<std::uint64_t>& output) const
{
    if (input.size() != 2 || input[0] != muxDispatch || input[1] != State::features ||
        output.empty())
        return badArgument;
    const auto found = processors();
    const bool isAny = std::any_of(found.begin(), found.end(), [&](const auto& each) {
        return each.kind != found.front().kind;
    });
    output.front() = isAny ? canSwitch : 0;
    output = output.first(1);
    return success;
}

GraphicsControl::Result VgaSwitcheroo::setState(std::span<const std::uint64_t> input) const
{
    if (input.size() != 3 || input[0] != muxDispatch)
        return badArgument;
    if (input[1] == State::forceSwitch)
        return force();
    return input[1] == State::selectProcessor ? select(input[2]) : badArgument;
}

GraphicsControl::Result VgaSwitcheroo::force() const
{
    const auto found = processors();
    const auto other =
        std::find_if(found.begin(), found.end(), [](const auto& each) { return !each.isActive; });
    return other == found.end() ? noSuchDevice : order(other->kind);
}

GraphicsControl::Result VgaSwitcheroo::select(std::uint64_t number) const
{
    const auto found = processors();
    const auto wanted = std::find_if(found.begin(), found.end(),
                                     [&](const auto& each) { return each.number == number; });
    if (wanted == found.end())
        return badArgument;
    // "D" for delayed: it waits for the programs that hold the other one.
    return wanted->isActive ? success : order("D" + wanted->kind);
}

GraphicsControl::Result VgaSwitcheroo::order(const std::string& command) const
{
    const FileDescriptor file(::open(mSwitch.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    if (!file.isOpen())
        return ioError;
    const auto written = ::write(file.get(), command.data(), command.size());
    return written == static_cast<ssize_t>(command.size()) ? success : ioError;
}

} // namespace farview
