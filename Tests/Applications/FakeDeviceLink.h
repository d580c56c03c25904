#pragma once

#include "Applications/ScreenCapture/DeviceLink.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace farview
{

/// A link without a network: keeps what it was asked for, and tells what the test wants.
class FakeDeviceLink final : public DeviceLink
{
public:
    struct Attempt {
        std::vector<Endpoint> endpoints;
        LinkOptions options;
    };

    void setDelegate(std::weak_ptr<DeviceLinkDelegate> delegate) override
    {
        mDelegate = std::move(delegate);
    }
    void connectTo(const std::vector<Endpoint>& endpoints, const LinkOptions& options) override
    {
        attempts.push_back({endpoints, options});
        guessIsSpent = false;
    }
    void setOptions(const LinkOptions& options) override { sentOptions.push_back(options); }
    void disconnect(LinkGoodbyeCode code, std::function<void()> then) override
    {
        onDisconnect();
        goodbyes.push_back(code);
        if (then)
            goodbyeIsSaid = std::move(then);
    }

    bool hasFeature(const std::string& feature) const override
    {
        return std::find(features.begin(), features.end(), feature) != features.end();
    }
    void send(const LinkFrame& frame) override { sent.push_back(frame); }
    void confirm() override { ++confirmations; }
    bool hasRoom() const override { return room; }

    /// The device accepts, cannot be reached or refuses, or goes away.
    void accept(const std::string& address)
    {
        mDelegate.lock()->deviceDidConnect({address, key, cipher, wasPaired});
    }
    void fail(const std::string& why) { fail({LinkEndReason::lost, why}); }
    void fail(LinkEnd end)
    {
        end.isGuessSpent = guessIsSpent;
        mDelegate.lock()->deviceDidNotConnect(end);
    }
    /// The device proves its key; what the server says.
    LinkTrust prove() { return mDelegate.lock()->deviceDidProveKey(key); }
    std::optional<LinkGoodbye> mayNotAskUser() { return mDelegate.lock()->mayNotAskUser(); }
    void showDigits(const std::string& digits)
    {
        guessIsSpent = true;
        mDelegate.lock()->deviceShowsDigits(digits);
    }
    void end(LinkEndReason reason) { mDelegate.lock()->deviceDidDisconnect({reason, "the end"}); }

    void deviceSends(const LinkFrame& frame) { mDelegate.lock()->deviceDidSend(frame); }
    void makeRoom(bool flag)
    {
        room = flag;
        if (room)
            mDelegate.lock()->deviceHasRoom();
    }

    std::vector<std::string> features{kLinkScreenFeature, kLinkZstdFeature};
    std::string key = std::string(64, 'd');
    std::string cipher = "TLS_AES_256_GCM_SHA384";
    bool wasPaired = false;
    int confirmations = 0;
    /// Whether the device of the attempt could know the digits.
    bool guessIsSpent = false;
    bool room = true;
    std::vector<LinkFrame> sent;
    std::vector<Attempt> attempts;
    std::vector<LinkOptions> sentOptions;
    std::vector<LinkGoodbyeCode> goodbyes;
    std::function<void()> goodbyeIsSaid;
    std::function<void()> onDisconnect = [] {};

private:
    std::weak_ptr<DeviceLinkDelegate> mDelegate;
};

/// The links of a server: its first one, and those for further devices as it makes them.
class FakeDeviceLinks
{
public:
    FakeDeviceLink first;

    /// In the order in which they were made.
    FakeDeviceLink& further(std::size_t index) { return mFurther.at(index); }
    std::size_t furtherCount() const { return mFurther.size(); }
    /// For one server.
    DeviceLinks maker()
    {
        return [this, isFirst = true]() mutable {
            FakeDeviceLink& made = std::exchange(isFirst, false) ? first : mFurther.emplace_back();
            return std::shared_ptr<DeviceLink>(std::shared_ptr<void>(), &made);
        };
    }

private:
    std::deque<FakeDeviceLink> mFurther;
};

} // namespace farview
