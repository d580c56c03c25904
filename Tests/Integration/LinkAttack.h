#pragma once

#include "Tests/Integration/ManInTheMiddle.h"
#include "Tests/Integration/ServerAndDevice.h"

#include <memory>
#include <string>
#include <vector>

namespace farview
{

inline QByteArray byteArray(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

/// The real server and the real device, and somebody who means them no good.
class LinkAttack : public ServerAndDevice
{
protected:
    using State = PairingReport::State;

    /// The device at a port where nobody looks for it, and the man where it should be.
    void startAroundMan()
    {
        startDevice({"--port", "0"});
        ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
        man = std::make_unique<ManInTheMiddle>(portIn("device.log"));
        startServer();
    }
    void startBoth()
    {
        startDevice();
        startServer();
        ASSERT_TRUE(deviceSays("Announced")) << deviceLog();
    }
    void ask()
    {
        panel->pairing = {};
        panel->reports.clear();
        panel->connectToAddress("127.0.0.1");
    }
    bool connects()
    {
        ask();
        return panel->hears(kServerConnectedToDevice);
    }
    void disconnect()
    {
        panel->reports.clear();
        panel->post(kDisconnectCurrentServerFromHost);
        EXPECT_TRUE(panel->hears(kServerDisconnectedFromDevice));
    }
    bool reports(State state)
    {
        return waitUntil([&] { return panel->pairing.state == state; });
    }
    /// What the server reports of an attempt that must fail.
    State failure()
    {
        ask();
        return failureOf();
    }
    State failureOf()
    {
        EXPECT_TRUE(panel->hears(kRequestingErrorMsgFromPrefPane)) << serverLog() << deviceLog();
        return panel->pairing.state;
    }
    void answer(const char* yesOrNo)
    {
        panel->post(yesOrNo, {{kDigitsKey, panel->pairing.digits}});
    }
    /// Says at the device that the computer shows these; false when it does not ask for them.
    bool acceptsAtDevice(const std::string& digits)
    {
        const auto status =
            start("farview-device", {"--accept", digits}, "accept.log")->waitForEnd();
        return status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0;
    }
    std::size_t timesDeviceSaid(const std::string& words) const
    {
        const std::string log = text("device.log");
        std::size_t times = 0;
        for (auto at = log.find(words); at != std::string::npos; at = log.find(words, at + 1))
            ++times;
        return times;
    }
    std::vector<PairedPeer> known(const char* domain)
    {
        stored->appSynchronize(domain);
        return PairedPeers(*stored, domain).all();
    }
    /// The most that a process ever had in memory, in megabytes.
    static int mostMemory(pid_t process)
    {
        std::ifstream status("/proc/" + std::to_string(process) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("VmHWM:", 0) == 0)
                return std::stoi(line.substr(6)) / 1024;
        }
        ADD_FAILURE() << "there is no such process";
        return 0;
    }

    std::unique_ptr<ManInTheMiddle> man;
};

/// Nobody was ever confirmed.
class PairingAttack : public LinkAttack
{
protected:
    PairingAttack() { areConfirmed = false; }
};

} // namespace farview
