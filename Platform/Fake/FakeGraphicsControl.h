#pragma once

#include "Platform/GraphicsControl.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace farview
{

/// A machine as tests describe it: without the service until `addService`, then with processors 0
/// and 1 behind a mux, of which 0 is in use.
class FakeGraphicsControl final : public GraphicsControl
{
public:
    static constexpr Object port = 1;
    static constexpr Object service = 2;

    Result masterPort(Object& port) override;
    std::optional<PropertyList> serviceMatching(const std::string& className) override;
    Result getMatchingServices(Object port, const PropertyList& matching,
                               Object& iterator) override;
    Object iteratorNext(Object iterator) override;
    void retain(Object object) override;
    void release(Object object) override;
    Result serviceOpen(Object service, std::uint32_t type, Object& connection) override;
    Result serviceClose(Object connection) override;
    Result addInterestNotification(Object notificationPort, Object service, const std::string& type,
                                   InterestCallback callback, void* reference) override;
    Result callScalarMethod(Object connection, std::uint32_t selector,
                            std::span<const std::uint64_t> input,
                            std::span<std::uint64_t>& output) override;

    void addService() { mHasService = true; }
    void removeService() { mHasService = false; }
    /// The next calls of that name ("IOServiceOpen", or "call 2" for operation 2) give that result.
    void setResult(const std::string& call, Result result) { mResults[call] = result; }
    void setMatchingFails() { mMatchingFails = true; }
    void setFeatures(std::uint64_t features) { mFeatures = features; }
    /// Tells whoever asked that something happened to the service.
    void sendInterest(std::uint32_t messageType);

    std::uint64_t activeProcessor() const { return mActive; }
    bool isOpen(Object connection) const { return mConnections.contains(connection); }
    /// What was called with what, in order: "IOServiceOpen 2 0", "call 101 2 1 4 1".
    const std::vector<std::string>& calls() const { return mCalls; }
    /// What a result held before the last call that has one.
    std::uint64_t primedOutput() const { return mPrimedOutput; }

private:
    struct Interest {
        InterestCallback callback;
        void* reference;
    };

    void note(const std::string& call, std::initializer_list<std::uint64_t> arguments);
    Result resultOf(const std::string& call) const;
    Result getState(std::span<const std::uint64_t> input, std::span<std::uint64_t>& output);
    Result setState(std::span<const std::uint64_t> input);

    bool mHasService = false;
    bool mMatchingFails = false;
    std::uint64_t mFeatures = 1 << 2;
    std::uint64_t mActive = 0;
    std::uint64_t mPrimedOutput = 0;
    Object mNextIterator = 51;
    Object mNextConnection = 101;
    /// Whether the service is still to come.
    std::map<Object, bool> mIterators;
    std::set<Object> mConnections;
    std::vector<Interest> mInterests;
    std::map<std::string, Result> mResults;
    std::vector<std::string> mCalls;
};

} // namespace farview
