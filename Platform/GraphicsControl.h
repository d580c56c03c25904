#pragma once

#include "Platform/Types/PropertyList.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace farview
{

/// The service that switches a machine between its two graphics processors, and how one comes to
/// it: find it, open a connection to it, call its numbered operations.
///
/// Everything is handed out as a number, and 0 is none. The number of a connection is never used
/// again, so that a call that comes after its end reaches nobody else's.
class GraphicsControl
{
public:
    /// `success`, or what went wrong.
    using Result = std::int32_t;
    using Object = std::uint32_t;
    /// Called with the reference it was registered with, when something happens to the service.
    using InterestCallback = void (*)(void* reference, Object service, std::uint32_t messageType,
                                      void* messageArgument);

    static constexpr Result success = 0;
    static constexpr Result noSuchDevice = static_cast<Result>(0xE00002C0);
    static constexpr Result badArgument = static_cast<Result>(0xE00002C2);
    static constexpr Result unsupported = static_cast<Result>(0xE00002C7);
    static constexpr Result ioError = static_cast<Result>(0xE00002CA);
    static constexpr Result notOpen = static_cast<Result>(0xE00002CD);

    virtual ~GraphicsControl() = default;

    /// The port through which services are looked for.
    virtual Result masterPort(Object& port) = 0;
    /// What describes the services of that class; nothing when it cannot be made.
    virtual std::optional<PropertyList> serviceMatching(const std::string& className) = 0;
    /// An iterator over the services that fit, to be released. There may be none in it.
    virtual Result getMatchingServices(Object port, const PropertyList& matching,
                                       Object& iterator) = 0;
    /// The next object, which the caller releases; 0 at the end.
    virtual Object iteratorNext(Object iterator) = 0;
    virtual void retain(Object object) = 0;
    virtual void release(Object object) = 0;

    virtual Result serviceOpen(Object service, std::uint32_t type, Object& connection) = 0;
    virtual Result serviceClose(Object connection) = 0;
    /// `type` says what is of interest ("IOGeneralInterest" for most of it).
    virtual Result addInterestNotification(Object notificationPort, Object service,
                                           const std::string& type, InterestCallback callback,
                                           void* reference) = 0;
    /// Calls the operation of that number. `output` is the room for its results and becomes as long
    /// as there are results.
    virtual Result callScalarMethod(Object connection, std::uint32_t selector,
                                    std::span<const std::uint64_t> input,
                                    std::span<std::uint64_t>& output) = 0;
};

} // namespace farview
