#pragma once

#include "Platform/GraphicsControl.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace farview
{

/// The kernel's switch between the processor's own graphics ("IGD") and another one ("DIS"), a file
/// of debugfs. Where the file is missing, or this user may not use it, there is no service.
///
/// Processors are numbered as the file numbers them. Selecting one takes effect now or, when
/// programs hold the other one, as soon as they have ended; a forced switch takes effect now or not
/// at all. Success means only that the kernel accepted the order. Changes are not announced.
class VgaSwitcheroo final : public GraphicsControl
{
public:
    VgaSwitcheroo() : VgaSwitcheroo("/sys/kernel/debug") {}
    explicit VgaSwitcheroo(const std::string& debugFolder);

    Result masterPort(Object& port) override;
    std::optional<PropertyList> serviceMatching(const std::string& className) override;
    Result getMatchingServices(Object port, const PropertyList& matching,
                               Object& iterator) override;
    Object iteratorNext(Object iterator) override;
    /// The service is there as long as its file: counting its owners changes nothing.
    void retain(Object object) override;
    void release(Object object) override;
    Result serviceOpen(Object service, std::uint32_t type, Object& connection) override;
    Result serviceClose(Object connection) override;
    Result addInterestNotification(Object notificationPort, Object service, const std::string& type,
                                   InterestCallback callback, void* reference) override;
    Result callScalarMethod(Object connection, std::uint32_t selector,
                            std::span<const std::uint64_t> input,
                            std::span<std::uint64_t>& output) override;

private:
    struct Processor {
        std::uint64_t number = 0;
        std::string kind; ///< "IGD" or "DIS"
        bool isActive = false;
    };

    static std::optional<Processor> processorIn(const std::string& line);
    std::vector<Processor> processors() const;
    bool isThere() const { return !processors().empty(); }
    Result order(const std::string& command) const;
    Result force() const;
    Result select(std::uint64_t number) const;
    Result setState(std::span<const std::uint64_t> input) const;
    Result getState(std::span<const std::uint64_t> input, std::span<std::uint64_t>& output) const;

    std::string mSwitch;
    Object mNextObject = 3;
    /// Whether the iterator has still to return the service.
    std::map<Object, bool> mIterators;
    std::set<Object> mConnections;
};

} // namespace farview
