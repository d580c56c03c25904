#pragma once

#include "Tests/Support/TemporaryFolder.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/// Plays an X server with RandR, in a thread: by itself a decent one with some outputs of 100x50
/// points; tests put other answers in the place of decent ones. Ends with the object. For its
/// length it is the display of this process.
class ScriptedXServer
{
public:
    using Bytes = std::vector<std::uint8_t>;

    /// One request, named by its operation: "GetCrtcInfo", "SetCrtcConfig 3 100 0" (crtc, x, y),
    /// "SetScreenSize 200 50", …
    struct Request {
        std::string name;
        std::uint16_t sequence = 0;

        bool is(const std::string& operation) const { return name.starts_with(operation); }
    };
    /// What is sent for a request in the place of the decent answer; nothing: the decent one. Bytes
    /// are sent as they are; an empty answer is silence, `hangUp()` the end of the connection.
    using Script = std::function<std::optional<Bytes>(const Request&, const Bytes& decent)>;

    /// `positions`: the x of each output; outputs at the same place show the same.
    explicit ScriptedXServer(std::vector<int> positions = {0, 0});
    ~ScriptedXServer();
    ScriptedXServer(const ScriptedXServer&) = delete;
    ScriptedXServer& operator=(const ScriptedXServer&) = delete;

    void setScript(Script script);
    /// Sent first, in the place of the description of the server.
    void setSetup(Bytes setup) { mSetup = std::move(setup); }
    static Bytes decentSetup();
    static Bytes hangUp() { return {0xDE, 0xAD}; }
    /// An answer that says no.
    static Bytes refusal(const Request& request);

    /// The names of the requests so far.
    std::vector<std::string> requests();

    static std::uint32_t number(const Bytes& bytes, std::size_t place, std::size_t size);
    static void put(Bytes& bytes, std::size_t place, std::uint32_t value, std::size_t size);

private:
    void serve();
    void serveOne(int client);
    std::optional<Bytes> scriptedAnswer(const Request& request, const Bytes& decent);
    bool answer(int client, const Bytes& request);
    std::string nameOf(const Bytes& request) const;
    Bytes decentAnswer(const std::string& name, const Bytes& request);
    Bytes resources() const;
    Bytes crtcInfo(std::uint32_t crtc) const;
    Bytes outputInfo(std::uint32_t output) const;

    std::vector<int> mPositions;
    Bytes mSetup = decentSetup();
    Script mScript;
    int mListener = -1;
    std::atomic<bool> mIsEnding = false;
    std::uint16_t mSequence = 0;
    std::mutex mMutex;
    std::vector<std::string> mRequests;
    std::thread mThread;
    std::unique_ptr<ScopedEnvironment> mDisplay;
    ScopedEnvironment mWayland{"WAYLAND_DISPLAY", nullptr};
};
