#include "Platform/Fake/FakeGraphicsControl.h"

namespace farview
{
namespace
{

const PropertyList matchingService =
    PropertyList::Dictionary{{"IOProviderClass", "AppleGraphicsControl"}};

} // namespace

void FakeGraphicsControl::note(const std::string& call,
                               std::initializer_list<std::uint64_t> arguments)
{
    std::string line = call;
    for (const auto argument : arguments)
        line += " " + std::to_string(argument);
    mCalls.push_back(line);
}

GraphicsControl::Result FakeGraphicsControl::resultOf(const std::string& call) const
{
    const auto found = mResults.find(call);
    return found == mResults.end() ? success : found->second;
}

GraphicsControl::Result FakeGraphicsControl::masterPort(Object& found)
{
    note("IOMasterPort", {});
    found = port;
    return resultOf("IOMasterPort");
}

std::optional<PropertyList> FakeGraphicsControl::serviceMatching(const std::string& className)
{
    mCalls.push_back("IOServiceMatching " + className);
    if (mMatchingFails)
        return std::nullopt;
    return PropertyList::Dictionary{{"IOProviderClass", className}};
}

GraphicsControl::Result FakeGraphicsControl::getMatchingServices(Object from,
                                                                 const PropertyList& matching,
                                                                 Object& iterator)
{
    note("IOServiceGetMatchingServices", {from});
    if (const auto result = resultOf("IOServiceGetMatchingServices"))
        return result;
    iterator = mNextIterator++;
    mIterators[iterator] = mHasService && from == port && matching == matchingService;
    return success;
}

GraphicsControl::Object FakeGraphicsControl::iteratorNext(Object iterator)
{
    note("IOIteratorNext", {iterator});
    const auto found = mIterators.find(iterator);
    if (found == mIterators.end() || !found->second)
        return 0;
    found->second = false;
    return service;
}

void FakeGraphicsControl::retain(Object object) { note("IOObjectRetain", {object}); }

void FakeGraphicsControl::release(Object object)
{
    note("IOObjectRelease", {object});
    mIterators.erase(object);
}

GraphicsControl::Result FakeGraphicsControl::serviceOpen(Object which, std::uint32_t type,
                                                         Object& connection)
{
    note("IOServiceOpen", {which, type});
    if (const auto result = resultOf("IOServiceOpen"))
        return result;
    if (!mHasService || which != service)
        return noSuchDevice;
    connection = mNextConnection++;
    mConnections.insert(connection);
    return success;
}

GraphicsControl::Result FakeGraphicsControl::serviceClose(Object connection)
{
    note("IOServiceClose", {connection});
    return mConnections.erase(connection) > 0 ? success : notOpen;
}

GraphicsControl::Result FakeGraphicsControl::addInterestNotification(Object notificationPort,
                                                                     Object which,
                                                                     const std::string& type,
                                                                     InterestCallback callback,
                                                                     void* reference)
{
    note("IOServiceAddInterestNotification " + type, {notificationPort, which});
    mInterests.push_back({callback, reference});
    return success;
}

GraphicsControl::Result FakeGraphicsControl::callScalarMethod(Object connection,
                                                              std::uint32_t selector,
                                                              std::span<const std::uint64_t> input,
                                                              std::span<std::uint64_t>& output)
{
    note("call", {connection, selector});
    for (const auto number : input)
        mCalls.back() += " " + std::to_string(number);
    if (!output.empty())
        mPrimedOutput = output.front();
    if (!mConnections.contains(connection))
        return notOpen;
    if (const auto result = resultOf("call " + std::to_string(selector)))
        return result;
    if (!mHasService)
        return noSuchDevice;
    switch (selector) {
    case 0:
    case 1:
        return success;
    case 2:
        return setState(input);
    case 3:
        return getState(input, output);
    case 4:
        return input.size() == 1 ? success : badArgument;
    default:
        return unsupported;
    }
}

GraphicsControl::Result FakeGraphicsControl::getState(std::span<const std::uint64_t> input,
                                                      std::span<std::uint64_t>& output)
{
    if (input.size() != 2 || input[0] != 1 || input[1] != 0 || output.empty())
        return badArgument;
    output.front() = mFeatures;
    output = output.first(1);
    return success;
}

GraphicsControl::Result FakeGraphicsControl::setState(std::span<const std::uint64_t> input)
{
    if (input.size() != 3 || input[0] != 1)
        return badArgument;
    if (input[1] == 2)
        mActive = 1 - mActive;
    else if (input[1] == 4 && input[2] <= 1)
        mActive = input[2];
    else
        return badArgument;
    return success;
}

void FakeGraphicsControl::sendInterest(std::uint32_t messageType)
{
    for (const auto& interest : mInterests)
        interest.callback(interest.reference, service, messageType, nullptr);
}

} // namespace farview
