#include "Source/FVEDisplay.h"

#include "Common/NSApplication_Additions.h"
#include "Common/Registry/QLNRegistryExplorer.h"
#include "Platform/Log.h"
#include "Platform/Platform.h"

#include <array>
#include <cstdio>
#include <string>

using farview::GraphicsControl;
using farview::Platform;
using Displays = farview::DisplayConfiguration;

namespace
{

// The numbered operations of the service.
constexpr std::uint32_t openSelector = 0;
constexpr std::uint32_t closeSelector = 1;
constexpr std::uint32_t setMuxStateSelector = 2;
constexpr std::uint32_t getMuxStateSelector = 3;
constexpr std::uint32_t setExclusiveSelector = 4;

constexpr std::uint32_t muxDispatch = 1;
constexpr std::uint64_t featuresState = 0;
constexpr std::uint64_t forceSwitchState = 2;
constexpr std::uint64_t selectGPUState = 4;
constexpr std::uint32_t switchFeature = 2;
constexpr std::uint32_t featureCount = 32;

/// What a result holds that the service never wrote.
constexpr std::uint64_t unwrittenMark = 0xBADBABE;

constexpr std::uint8_t unknownCapability = 127;
constexpr std::uint32_t unknownCount = 0xFFFFFFFF;
constexpr std::uint32_t lastFreezingVersion = 0x0A0604;

AGCHandle gAGC_connect;
std::uint8_t sMuxCapabilityValue = unknownCapability;
std::uint32_t sAliasedDisplayCount = unknownCount;

GraphicsControl& graphics() { return *Platform::current().graphicsControl; }

Displays& displays() { return *Platform::current().displayConfiguration; }

/// All log lines bear this name, whichever of the functions writes them.
void logFailure(const char* operation)
{
    const auto line = std::string("setCurrentXMuxGPU: ") + operation + "() failed";
    Platform::current().log->write(farview::LogLevel::error, line);
}

/// The first service of that kind, to be released; 0, with the reason printed, when there is none.
GraphicsControl::Object firstService(GraphicsControl::Object masterPort)
{
    const auto matching = graphics().serviceMatching("AppleGraphicsControl");
    if (!matching) {
        std::puts("IOServiceMatching returned a NULL dictionary.");
        return 0;
    }
    GraphicsControl::Object iterator = 0;
    const auto result = graphics().getMatchingServices(masterPort, *matching, iterator);
    if (result != GraphicsControl::success) {
        std::printf("IOServiceGetMatchingServices returned %d\n\n", static_cast<int>(result));
        return 0;
    }
    const auto service = graphics().iteratorNext(iterator);
    graphics().release(iterator);
    if (service == 0)
        std::puts("Couldn't find any matches.");
    return service;
}

bool call(const AGCHandle* handle, std::uint32_t selector, std::span<const std::uint64_t> input)
{
    std::span<std::uint64_t> nothing;
    return graphics().callScalarMethod(handle->connection, selector, input, nothing) ==
           GraphicsControl::success;
}

/// The process's handle with a connection that is open on both sides. False, with the step that
/// failed logged, when it cannot be had.
bool openMux()
{
    GraphicsControl::Object port = 0;
    if (graphics().masterPort(port) != GraphicsControl::success) {
        logFailure("IOMasterPort");
        return false;
    }
    if (!AGCAttach(port, gAGC, 0, nullptr, nullptr)) {
        logFailure("AGCAttach");
        return false;
    }
    if (AGCOpen(gAGC))
        return true;
    graphics().serviceClose(gAGC->connection);
    logFailure("AGCOpen");
    return false;
}

/// Without the feature nothing is set, and that is no failure.
bool setMuxStateIfItSwitches(std::uint64_t state, std::uint64_t value)
{
    return !AGCHasFeature(gAGC, switchFeature) || AGCSetMuxState(gAGC, muxDispatch, state, value);
}

/// In this order: the service hears of the end only after its connection has been closed.
void closeMux()
{
    graphics().serviceClose(gAGC->connection);
    AGCClose(gAGC);
}

/// How many displays show what the first one shows. Left unknown where no display is online.
void queryAliasedDisplays()
{
    std::array<Displays::Display, 32> online{};
    std::array<Displays::Display, 32> aliases{};
    std::uint32_t count = 0;
    displays().onlineDisplayList(online, count);
    if (count > 0)
        displays().displayAliasList(online[0], aliases, sAliasedDisplayCount);
}

} // namespace

AGCHandle* const gAGC = &gAGC_connect;

bool AGCAttach(GraphicsControl::Object masterPort, AGCHandle* handle,
               GraphicsControl::Object notificationPort, GraphicsControl::InterestCallback callback,
               void* reference)
{
    const auto service = firstService(masterPort);
    if (service == 0)
        return false;
    graphics().retain(service);
    handle->service = service;
    const auto result = graphics().serviceOpen(service, 0, handle->connection);
    const bool isOpen = result == GraphicsControl::success;
    if (isOpen && notificationPort != 0 && callback != nullptr)
        graphics().addInterestNotification(notificationPort, service, "IOGeneralInterest", callback,
                                           reference);
    graphics().release(service);
    return isOpen;
}

bool AGCOpen(const AGCHandle* handle) { return call(handle, openSelector, {}); }

bool AGCClose(const AGCHandle* handle) { return call(handle, closeSelector, {}); }

bool AGCGetMuxState(const AGCHandle* handle, std::uint32_t dispatch, std::uint64_t state,
                    std::uint64_t* value)
{
    const std::array<std::uint64_t, 2> input = {dispatch, state};
    std::uint64_t answer = unwrittenMark;
    std::span<std::uint64_t> output(&answer, 1);
    const auto result =
        graphics().callScalarMethod(handle->connection, getMuxStateSelector, input, output);
    const bool isAnswered = result == GraphicsControl::success;
    *value = isAnswered ? answer : 0;
    return isAnswered;
}

bool AGCSetMuxState(const AGCHandle* handle, std::uint32_t dispatch, std::uint64_t state,
                    std::uint64_t value)
{
    const std::array<std::uint64_t, 3> input = {dispatch, state, value};
    return call(handle, setMuxStateSelector, input);
}

bool AGCSetExclusive(const AGCHandle* handle, std::uint64_t value)
{
    return call(handle, setExclusiveSelector, {&value, 1});
}

bool AGCHasFeature(const AGCHandle* handle, std::uint32_t feature)
{
    std::uint64_t features = 0;
    return AGCGetMuxState(handle, muxDispatch, featuresState, &features) &&
           feature < featureCount && (features >> feature & 1) != 0;
}

void FVEForceSwitch()
{
    if (!openMux())
        return;
    setMuxStateIfItSwitches(forceSwitchState, 0);
    closeMux();
}

void setCurrentXMuxGPU(std::uint32_t gpu)
{
    if (!openMux())
        return;
    if (!setMuxStateIfItSwitches(selectGPUState, gpu))
        logFailure("AGCSetMuxState");
    closeMux();
}

bool computerHasXMuxGPUCapability()
{
    if (sMuxCapabilityValue == unknownCapability) {
        if (sAliasedDisplayCount == unknownCount)
            queryAliasedDisplays();
        sMuxCapabilityValue = sAliasedDisplayCount > 1 ? 1 : 0;
    }
    return sMuxCapabilityValue == 1;
}

bool computerHasXMuxGPUFreezeIssues()
{
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOService");
    explorer.buildFullRegistryDictionary();
    const auto model = QLNRegistryExplorer::computerModel();
    return (model == "MacBookPro6,1" || model == "MacBookPro6,2") &&
           BCDSystemVersionFunction() <= lastFreezingVersion;
}

Displays::Error turnOffDisplayMirroringForSession(std::uint32_t option)
{
    Displays::Transaction transaction = 0;
    displays().beginConfiguration(transaction);
    displays().configureMirrorOfDisplay(transaction, displays().mainDisplay(), 0);
    return displays().completeConfiguration(transaction, option);
}

void FVEUseHighPowerVideo() {}

void FVEUseLowPowerVideo() {}
