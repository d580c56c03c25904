// What the diagnosis does on the command line, and what it hears of the screen server, which is the
// test's own here.

#include "Common/PairedPeers.h"
#include "Common/Rules/PairingReport.h"
#include "Tests/Integration/DoctorRun.h"
#include "Tests/Integration/ServerAndDevice.h"

#include <gmock/gmock.h>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

using State = PairingReport::State;

/// Answers on the bus as the screen server does.
class ScriptedServer
{
public:
    explicit ScriptedServer(DistributedNotificationCenter& center) : mCenter(center)
    {
        observe(kQueryRequestForConnectedHost, [this](const Notification&) { answerQuery(); });
        for (const char* name : {kConfirmDevice, kRefuseDevice, kPairedDevicesDidChange})
            observe(name, [this](const Notification& request) { take(request); });
    }

    PairingReport report{State::comparing, "482913", "Desk"};
    PairingReport next;             ///< after an answer to the digits of `report`
    bool isConnected = false;       ///< and with which cipher it says in its answer
    std::vector<std::string> heard; ///< requests, each with its digits

private:
    void observe(const char* name, NotificationHandler handler)
    {
        mCenter.addObserver(mLife, std::move(handler), name, "");
    }
    void post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo)
    {
        mCenter.postNotificationName(name, "", std::move(userInfo), 3);
    }
    void postReport()
    {
        post(kServerPairingDidChange, {{kPairingReportKey, textOfPairingReport(report)}});
    }
    void answerQuery()
    {
        if (isConnected)
            post(kQueryResultForConnectedHost, {{kDeviceNameKey, "desk-7.local"},
                                                {kDeviceAddressKey, "10.88.0.1"},
                                                {kCipherKey, "TLS_AES_256_GCM_SHA384"}});
        else
            post(kServerDisconnectedFromDevice, {});
        if (report.state != State::none)
            postReport();
    }
    void take(const Notification& request)
    {
        const auto* digits = request.text(kDigitsKey);
        heard.push_back(request.name() + (digits ? " " + *digits : ""));
        if (!digits || *digits != report.digits)
            return;
        report = next;
        postReport();
    }

    DistributedNotificationCenter& mCenter;
    std::shared_ptr<int> mLife = std::make_shared<int>();
};

class DoctorCommands : public ServerAndDevice
{
protected:
    /// Nobody is confirmed yet.
    void SetUp() override
    {
        ServerAndDevice::SetUp();
        if (IsSkipped())
            return;
        for (const auto& device : devices().all())
            devices().forget(device.key);
    }
    DoctorRun run(const std::vector<std::string>& arguments) const
    {
        return {environment, arguments};
    }
    PairedPeers devices() const { return {*stored, PairedPeers::devices}; }
    void remember(const std::string& key, const std::string& name) const
    {
        const Date march{1772366400};
        EXPECT_TRUE(devices().add({key + std::string(56, '0'), name, march, march}));
    }
    std::vector<std::string> namesOfDevices() const
    {
        std::vector<std::string> names;
        for (const auto& device : devices().all())
            names.push_back(device.name);
        return names;
    }
};

TEST_F(DoctorCommands, ConfirmsADeviceHoweverTheDigitsAreTyped)
{
    ScriptedServer server(panel->center());
    for (const auto* typed : {"482913", "482 913"}) {
        server.report = {State::comparing, "482913", "Desk"};
        server.next = {State::confirmed, "482913", "Desk"};
        const auto confirmed = run({"--confirm", typed});
        EXPECT_EQ(confirmed.status(), 0) << confirmed.output();
        EXPECT_THAT(confirmed.output(), HasSubstr("Now confirm it at Desk, too."));
    }
    const std::string request = std::string(kConfirmDevice) + " 482913";
    EXPECT_THAT(server.heard, ElementsAre(request, request));
}

TEST_F(DoctorCommands, RefusesADevice)
{
    ScriptedServer server(panel->center());
    const auto refused = run({"--refuse", "482913"});
    EXPECT_EQ(refused.status(), 0) << refused.output();
    EXPECT_THAT(refused.output(), HasSubstr("The device is not confirmed."));
    EXPECT_THAT(server.heard, ElementsAre(std::string(kRefuseDevice) + " 482913"));
}

TEST_F(DoctorCommands, ConfirmsNoOtherDigitsAndSaysSo)
{
    ScriptedServer server(panel->center());
    const auto wrong = run({"--confirm", "482914"});
    EXPECT_EQ(wrong.status(), 1);
    EXPECT_THAT(wrong.output(), HasSubstr("No device asks about 482 914 now."));
    EXPECT_THAT(server.heard, IsEmpty());
}

TEST_F(DoctorCommands, SaysThatTheDevicesUserRefused)
{
    ScriptedServer server(panel->center());
    server.next = {State::refusedThere, "", "Desk"};
    const auto refused = run({"--confirm", "482913"});
    EXPECT_EQ(refused.status(), 1);
    EXPECT_THAT(refused.output(), HasSubstr("Somebody said no at Desk. No picture was sent."));
}

TEST_F(DoctorCommands, SayThatNoServerAnswersAlsoWithoutABus)
{
    bus.stop();
    const auto alone = run({"--confirm", "482913"});
    EXPECT_EQ(alone.status(), 1);
    EXPECT_THAT(alone.output(), HasSubstr("The screen server does not answer."));
}

TEST_F(DoctorCommands, ForgetADeviceByItsNameOrItsKeyAndTellTheServer)
{
    ScriptedServer server(panel->center());
    remember("a1b2c3d4", "Desk");
    remember("b1b2c3d4", "");
    remember("c1b2c3d4", "Slab");
    const auto byName = run({"--forget", "Desk"});
    EXPECT_EQ(byName.status(), 0) << byName.output();
    EXPECT_THAT(byName.output(), HasSubstr("“Desk” is no longer confirmed"));
    EXPECT_THAT(namesOfDevices(), ElementsAre("", "Slab"));
    EXPECT_EQ(run({"--forget", "b1b2 c3d4"}).status(), 0);
    EXPECT_THAT(namesOfDevices(), ElementsAre("Slab"));
    EXPECT_TRUE(waitUntil([&] { return server.heard.size() == 2; }));
    EXPECT_THAT(server.heard, testing::Each(std::string(kPairedDevicesDidChange)));
}

TEST_F(DoctorCommands, ForgetNobodyForANameThatNobodyHas)
{
    ScriptedServer server(panel->center());
    remember("a1b2c3d4", "Desk");
    const auto nobody = run({"--forget", "Tablet\x1b[2J"});
    EXPECT_EQ(nobody.status(), 1);
    EXPECT_THAT(nobody.output(), HasSubstr("No confirmed device is called “Tablet\\x1B[2J”."));
    EXPECT_EQ(run({"--forget", ""}).status(), 2);
    EXPECT_THAT(namesOfDevices(), ElementsAre("Desk"));
    EXPECT_THAT(server.heard, IsEmpty());
}

TEST_F(DoctorCommands, LetAConfirmedDeviceTypeAndTakeThatBack)
{
    ScriptedServer server(panel->center());
    remember("a1b2c3d4", "Desk");
    remember("b1b2c3d4", "Slab");
    const auto allowed = run({"--let-type", "Desk"});
    EXPECT_EQ(allowed.status(), 0) << allowed.output();
    EXPECT_THAT(allowed.output(), HasSubstr("“Desk” may type on this computer from now on."));
    EXPECT_TRUE(devices().all()[0].mayType);
    EXPECT_FALSE(devices().all()[1].mayType);
    EXPECT_EQ(run({"--no-typing", "a1b2 c3d4"}).status(), 0);
    EXPECT_FALSE(devices().all()[0].mayType);
    EXPECT_EQ(run({"--let-type", "Tablet"}).status(), 1);
    EXPECT_TRUE(waitUntil([&] { return server.heard.size() == 2; }));
    EXPECT_THAT(server.heard, testing::Each(std::string(kPairedDevicesDidChange)));
}

TEST_F(DoctorCommands, LeaveNoFurtherDeviceWithoutAServer)
{
    const auto stopped = run({"--stop", "Desk"});
    EXPECT_EQ(stopped.status(), 1);
    EXPECT_THAT(stopped.output(), HasSubstr("The screen server does not answer."));
    for (const char* option : {"--also", "--stop", "--let-type", "--no-typing"})
        EXPECT_EQ(run({option, ""}).status(), 2) << option;
}

TEST_F(DoctorCommands, SayWhichOfThemCannotBeMeant)
{
    for (const auto* digits : {"48291", "4829130", "48291x", "", "-82913"})
        EXPECT_EQ(run({"--confirm", digits}).status(), 2) << digits;
    EXPECT_EQ(run({"--confirm", "482913", "--refuse", "482913"}).status(), 2);
}

TEST_F(DoctorCommands, TheReportTellsWhoIsConfirmedAndWhatEncryptsTheConnection)
{
    ScriptedServer server(panel->center());
    server.isConnected = true;
    remember("a1b2c3d4", "Desk");
    const auto report = run({"--json"});
    EXPECT_EQ(report.detail("pairing.device", "name"), "Desk") << report.output();
    EXPECT_EQ(report.detail("pairing.device", "key"), "a1b2 c3d4");
    EXPECT_EQ(report.detail("pairing.encrypted", "device"), "desk-7.local");
    EXPECT_EQ(report.detail("pairing.encrypted", "cipher"), "TLS_AES_256_GCM_SHA384");
}

} // namespace
