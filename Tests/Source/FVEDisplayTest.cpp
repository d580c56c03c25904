#include "Source/FVEDisplay.h"

#include "Common/Registry/QLNRegistryExplorer.h"
#include "Platform/Fake/FakePlatform.h"
#include "Tests/Support/ForkedProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using Calls = std::vector<std::string>;

const Calls attaching = {"IOMasterPort",
                         "IOServiceMatching AppleGraphicsControl",
                         "IOServiceGetMatchingServices 1",
                         "IOIteratorNext 51",
                         "IOObjectRelease 51",
                         "IOObjectRetain 2",
                         "IOServiceOpen 2 0",
                         "IOObjectRelease 2",
                         "call 101 0"};

Calls attachingAnd(Calls more)
{
    more.insert(more.begin(), attaching.begin(), attaching.end());
    return more;
}

/// Before any test.
const AGCHandle handleAtStart = *gAGC;

/// What the body prints to standard output.
std::string printedBy(const std::function<void()>& body)
{
    testing::internal::CaptureStdout();
    body();
    return testing::internal::GetCapturedStdout();
}

class FVEDisplayTest : public testing::Test
{
protected:
    std::vector<std::string> lines() const
    {
        std::vector<std::string> messages;
        for (const auto& line : fake.log.lines())
            messages.push_back(line.message);
        return messages;
    }
    bool attach(AGCHandle& handle)
    {
        return AGCAttach(FakeGraphicsControl::port, &handle, 0, nullptr, nullptr);
    }
    /// A handle with an open connection to the service, which is added.
    AGCHandle attached()
    {
        graphics.addService();
        AGCHandle handle;
        EXPECT_TRUE(attach(handle));
        return handle;
    }

    FakePlatform fake;
    Platform::Scope scope{fake.platform()};
    FakeGraphicsControl& graphics = fake.graphicsControl;
    FakeDisplayConfiguration& displays = fake.displayConfiguration;
};

// Attaching.

TEST_F(FVEDisplayTest, AttachingFindsTheServiceAndOpensAConnection)
{
    const auto handle = attached();
    EXPECT_EQ(handle.service, FakeGraphicsControl::service);
    EXPECT_TRUE(graphics.isOpen(handle.connection));
    EXPECT_EQ(graphics.calls(), Calls(attaching.begin() + 1, attaching.end() - 1));
}

TEST_F(FVEDisplayTest, AttachingSaysWhenNothingCanBeLookedFor)
{
    graphics.setMatchingFails();
    AGCHandle handle;
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(attach(handle)); }),
              "IOServiceMatching returned a NULL dictionary.\n");
    EXPECT_THAT(graphics.calls(), ElementsAre("IOServiceMatching AppleGraphicsControl"));
}

TEST_F(FVEDisplayTest, AttachingSaysWhyTheLookFailed)
{
    graphics.setResult("IOServiceGetMatchingServices", -536870212);
    AGCHandle handle;
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(attach(handle)); }),
              "IOServiceGetMatchingServices returned -536870212\n\n");
}

TEST_F(FVEDisplayTest, AttachingSaysWhenThereIsNoSuchService)
{
    AGCHandle handle;
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(attach(handle)); }), "Couldn't find any matches.\n");
    EXPECT_EQ(graphics.calls().back(), "IOObjectRelease 51");
    EXPECT_EQ(handle.service, 0U);
}

TEST_F(FVEDisplayTest, AServiceThatCannotBeOpenedIsStillStored)
{
    graphics.addService();
    graphics.setResult("IOServiceOpen", GraphicsControl::unsupported);
    AGCHandle handle;
    EXPECT_EQ(printedBy([&] { EXPECT_FALSE(attach(handle)); }), "");
    EXPECT_EQ(handle.service, FakeGraphicsControl::service);
    EXPECT_EQ(graphics.calls().back(), "IOObjectRelease 2");
}

void noteInterest(void* reference, GraphicsControl::Object, std::uint32_t messageType, void*)
{
    *static_cast<std::uint32_t*>(reference) = messageType;
}

TEST_F(FVEDisplayTest, ACallbackHearsOfTheService)
{
    graphics.addService();
    AGCHandle handle;
    std::uint32_t heard = 0;
    EXPECT_TRUE(AGCAttach(1, &handle, 9, noteInterest, &heard));
    EXPECT_EQ(graphics.calls().at(6), "IOServiceAddInterestNotification IOGeneralInterest 9 2");
    EXPECT_EQ(graphics.calls().back(), "IOObjectRelease 2");
    graphics.sendInterest(77);
    EXPECT_EQ(heard, 77U);
}

TEST_F(FVEDisplayTest, NothingIsRegisteredWithoutPortCallbackOrConnection)
{
    graphics.addService();
    AGCHandle handle;
    EXPECT_TRUE(AGCAttach(1, &handle, 9, nullptr, nullptr));
    EXPECT_TRUE(AGCAttach(1, &handle, 0, noteInterest, nullptr));
    graphics.setResult("IOServiceOpen", GraphicsControl::unsupported);
    EXPECT_FALSE(AGCAttach(1, &handle, 9, noteInterest, nullptr));
    EXPECT_THAT(graphics.calls(), Not(Contains(testing::StartsWith("IOServiceAddInterest"))));
}

// The numbered operations.

TEST_F(FVEDisplayTest, EachOperationHasItsNumber)
{
    const auto handle = attached();
    const auto before = graphics.calls().size();
    std::uint64_t value = 0;
    EXPECT_TRUE(AGCOpen(&handle));
    EXPECT_TRUE(AGCClose(&handle));
    EXPECT_TRUE(AGCSetMuxState(&handle, 1, 4, 1));
    EXPECT_TRUE(AGCGetMuxState(&handle, 1, 0, &value));
    EXPECT_TRUE(AGCSetExclusive(&handle, 1ULL << 40));
    EXPECT_EQ(Calls(graphics.calls().begin() + static_cast<std::ptrdiff_t>(before),
                    graphics.calls().end()),
              (Calls{"call 101 0", "call 101 1", "call 101 2 1 4 1", "call 101 3 1 0",
                     "call 101 4 1099511627776"}));
    EXPECT_EQ(value, 4U);
}

TEST_F(FVEDisplayTest, AnOperationThatFailsSaysSo)
{
    const auto handle = attached();
    for (const char* call : {"call 0", "call 1", "call 2", "call 4"})
        graphics.setResult(call, GraphicsControl::ioError);
    EXPECT_FALSE(AGCOpen(&handle));
    EXPECT_FALSE(AGCClose(&handle));
    EXPECT_FALSE(AGCSetMuxState(&handle, 1, 4, 1));
    EXPECT_FALSE(AGCSetExclusive(&handle, 1));
}

TEST_F(FVEDisplayTest, AStateThatCannotBeReadIsZero)
{
    const auto handle = attached();
    graphics.setResult("call 3", GraphicsControl::ioError);
    std::uint64_t value = 99;
    EXPECT_FALSE(AGCGetMuxState(&handle, 1, 0, &value));
    EXPECT_EQ(value, 0U);
}

TEST_F(FVEDisplayTest, AnAnswerStartsAsAMarkThatNoServiceGives)
{
    const auto handle = attached();
    std::uint64_t value = 0;
    AGCGetMuxState(&handle, 1, 0, &value);
    EXPECT_EQ(graphics.primedOutput(), 0xBADBABEU);
}

TEST_F(FVEDisplayTest, AFeatureIsABitOfTheMask)
{
    const auto handle = attached();
    graphics.setFeatures(0x80000001 | 1ULL << 33);
    EXPECT_TRUE(AGCHasFeature(&handle, 0));
    EXPECT_FALSE(AGCHasFeature(&handle, 1));
    EXPECT_TRUE(AGCHasFeature(&handle, 31));
    for (const std::uint32_t none : {32U, 33U, 64U, 0xFFFFFFFFU})
        EXPECT_FALSE(AGCHasFeature(&handle, none));
    graphics.setResult("call 3", GraphicsControl::ioError);
    EXPECT_FALSE(AGCHasFeature(&handle, 0));
}

TEST_F(FVEDisplayTest, TheProcesssOwnHandleIsEmptyAtStart)
{
    EXPECT_EQ(handleAtStart.service, 0U);
    EXPECT_EQ(handleAtStart.connection, 0U);
}

// Switching. The process's handle remembers what it attached to, but nothing depends on it.

TEST_F(FVEDisplayTest, SelectingAProcessorClosesTheConnectionBeforeItSaysSo)
{
    graphics.addService();
    setCurrentXMuxGPU(1);
    EXPECT_EQ(graphics.calls(), attachingAnd({"call 101 3 1 0", "call 101 2 1 4 1",
                                              "IOServiceClose 101", "call 101 1"}));
    EXPECT_EQ(graphics.activeProcessor(), 1U);
    EXPECT_FALSE(graphics.isOpen(101));
    EXPECT_THAT(lines(), IsEmpty());
}

TEST_F(FVEDisplayTest, ForcingASwitchSendsItsOwnState)
{
    graphics.addService();
    FVEForceSwitch();
    EXPECT_EQ(graphics.calls(), attachingAnd({"call 101 3 1 0", "call 101 2 1 2 0",
                                              "IOServiceClose 101", "call 101 1"}));
    EXPECT_EQ(graphics.activeProcessor(), 1U);
}

TEST_F(FVEDisplayTest, EachSwitchAttachesAnew)
{
    graphics.addService();
    setCurrentXMuxGPU(1);
    EXPECT_EQ(gAGC->connection, 101U);
    FVEForceSwitch();
    EXPECT_EQ(gAGC->service, FakeGraphicsControl::service);
    EXPECT_EQ(gAGC->connection, 102U);
    EXPECT_FALSE(graphics.isOpen(102));
    EXPECT_EQ(graphics.activeProcessor(), 0U);
}

TEST_F(FVEDisplayTest, AMuxThatCannotSwitchIsLeftAlone)
{
    graphics.addService();
    graphics.setFeatures(~0ULL & ~4ULL);
    setCurrentXMuxGPU(1);
    EXPECT_EQ(graphics.calls(),
              attachingAnd({"call 101 3 1 0", "IOServiceClose 101", "call 101 1"}));
    FVEForceSwitch();
    EXPECT_EQ(graphics.activeProcessor(), 0U);
    EXPECT_THAT(lines(), IsEmpty());
}

/// Both ways to switch, which share their first steps and what they log of them.
class FailingSwitch : public FVEDisplayTest, public testing::WithParamInterface<int>
{
protected:
    void switchProcessor()
    {
        if (GetParam() == 0)
            setCurrentXMuxGPU(1);
        else
            FVEForceSwitch();
    }
};

INSTANTIATE_TEST_SUITE_P(BothWays, FailingSwitch, testing::Values(0, 1));

TEST_P(FailingSwitch, StopsWithoutAPort)
{
    graphics.addService();
    graphics.setResult("IOMasterPort", GraphicsControl::ioError);
    switchProcessor();
    EXPECT_THAT(graphics.calls(), ElementsAre("IOMasterPort"));
    EXPECT_THAT(lines(), ElementsAre("setCurrentXMuxGPU: IOMasterPort() failed"));
}

TEST_P(FailingSwitch, StopsWithoutTheService)
{
    EXPECT_EQ(printedBy([this] { switchProcessor(); }), "Couldn't find any matches.\n");
    EXPECT_THAT(lines(), ElementsAre("setCurrentXMuxGPU: AGCAttach() failed"));
}

TEST_P(FailingSwitch, ClosesAConnectionThatTheServiceDoesNotOpen)
{
    graphics.addService();
    graphics.setResult("call 0", GraphicsControl::ioError);
    switchProcessor();
    EXPECT_EQ(graphics.calls(), attachingAnd({"IOServiceClose 101"}));
    EXPECT_THAT(lines(), ElementsAre("setCurrentXMuxGPU: AGCOpen() failed"));
}

TEST_P(FailingSwitch, OnlyASelectionLogsThatTheMuxRefused)
{
    graphics.addService();
    graphics.setResult("call 2", GraphicsControl::ioError);
    switchProcessor();
    EXPECT_EQ(graphics.calls().back(), "call 101 1");
    if (GetParam() == 0)
        EXPECT_THAT(lines(), ElementsAre("setCurrentXMuxGPU: AGCSetMuxState() failed"));
    else
        EXPECT_THAT(lines(), IsEmpty());
}

TEST_P(FailingSwitch, AMachineWithoutAnythingLogsTheMissingService)
{
    Platform empty;
    empty.log = &fake.log;
    const Platform::Scope nothingElse(empty);
    EXPECT_EQ(printedBy([this] { switchProcessor(); }), "Couldn't find any matches.\n");
    EXPECT_THAT(lines(), ElementsAre("setCurrentXMuxGPU: AGCAttach() failed"));
}

// What is found out once in a process.

TEST_F(FVEDisplayTest, WithoutADisplayTheComputerCountsAsCapableForEver)
{
    inItsOwnProcess([this] {
        EXPECT_TRUE(computerHasXMuxGPUCapability());
        displays.setDisplays({{5, 0}});
        EXPECT_TRUE(computerHasXMuxGPUCapability());
        EXPECT_THAT(displays.calls(), ElementsAre("list 32"));
    });
}

TEST_F(FVEDisplayTest, WithTwoAliasedDisplaysItIsCapable)
{
    inItsOwnProcess([this] {
        displays.setDisplays({{5, 0}, {6, 0}, {7, 1}});
        EXPECT_TRUE(computerHasXMuxGPUCapability());
        EXPECT_TRUE(computerHasXMuxGPUCapability());
        EXPECT_THAT(displays.calls(), ElementsAre("list 32", "aliases 5 32"));
    });
}

TEST_F(FVEDisplayTest, WithADisplayOfItsOwnItIsNot)
{
    inItsOwnProcess([this] {
        displays.setDisplays({{5, 0}, {6, 1}});
        EXPECT_FALSE(computerHasXMuxGPUCapability());
        displays.setDisplays({{5, 0}, {6, 0}});
        EXPECT_FALSE(computerHasXMuxGPUCapability()) << "found out once";
        EXPECT_THAT(displays.calls(), ElementsAre("list 32", "aliases 5 32"));
    });
}

TEST_F(FVEDisplayTest, WhereDisplaysCannotBeAskedForItCountsAsCapable)
{
    inItsOwnProcess([this] {
        displays.setDisplays({{5, 0}});
        displays.setError("list", DisplayConfiguration::invalidConnection);
        EXPECT_TRUE(computerHasXMuxGPUCapability());
        EXPECT_THAT(displays.calls(), ElementsAre("list 32"));
    });
}

// Models that freeze.

class FreezeIssues : public FVEDisplayTest
{
protected:
    void setModel(const std::string& model)
    {
        fake.registry.add(fake.registry.rootEntry(), {model});
    }
};

TEST_F(FreezeIssues, AreThoseOfTwoModelsUpToOneVersion)
{
    struct Row {
        const char* model;
        int minor;
        int bugFix;
        bool freezes;
    };
    for (const Row& row :
         {Row{"MacBookPro6,2", 6, 4, true}, Row{"MacBookPro6,2", 6, 5, false},
          Row{"MacBookPro6,2", 7, 0, false}, Row{"MacBookPro6,1", 0, 0, true}, Row{"", 6, 4, false},
          Row{"MacBookPro6,3", 6, 4, false}, Row{"macbookpro6,2", 6, 4, false},
          Row{"MacBookPro6,22", 6, 4, false}, Row{" MacBookPro6,2", 6, 4, false}}) {
        fake.registry = FakeRegistry();
        setModel(row.model);
        fake.systemVersion.setVersion(10, row.minor, row.bugFix);
        EXPECT_EQ(computerHasXMuxGPUFreezeIssues(), row.freezes)
            << '"' << row.model << "\" " << row.minor << '.' << row.bugFix;
    }
}

TEST_F(FreezeIssues, AreLookedForInAFreshSnapshotOfTheServicePlane)
{
    setModel("MacBookPro6,2");
    auto& explorer = QLNRegistryExplorer::sharedExplorer();
    explorer.setCurrentPlane("IOUSB");
    computerHasXMuxGPUFreezeIssues();
    EXPECT_EQ(explorer.currentPlane(), "IOService");
    EXPECT_FALSE(explorer.registryDictionary().get<PropertyList::Dictionary>()->empty());
}

// Mirroring.

TEST_F(FVEDisplayTest, MirroringEndsForTheMainDisplay)
{
    displays.setDisplays({{5, 0}, {6, 0}});
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), 0);
    EXPECT_THAT(displays.calls(), ElementsAre("begin", "main", "configure 1 5 0", "complete 1 1"));
    std::array<DisplayConfiguration::Display, 2> aliases{};
    std::uint32_t count = 0;
    displays.displayAliasList(5, aliases, count);
    EXPECT_EQ(count, 1U);
}

TEST_F(FVEDisplayTest, TheOptionIsHandedOnUnchanged)
{
    displays.setDisplays({{5, 0}});
    turnOffDisplayMirroringForSession(0xFFFFFFFF);
    EXPECT_EQ(displays.calls().back(), "complete 1 4294967295");
}

TEST_F(FVEDisplayTest, OnlyTheCompletionSaysWhetherMirroringEnded)
{
    displays.setDisplays({{5, 0}, {6, 0}});
    displays.setError("begin", DisplayConfiguration::failure);
    displays.setError("configure", DisplayConfiguration::illegalArgument);
    displays.setError("complete", DisplayConfiguration::rangeCheck);
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), DisplayConfiguration::rangeCheck);
    EXPECT_THAT(displays.calls(), ElementsAre("begin", "main", "configure 0 5 0", "complete 0 1"));
}

TEST_F(FVEDisplayTest, WithoutADisplayServerEndingTheMirroringFails)
{
    Platform empty;
    const Platform::Scope nothing(empty);
    EXPECT_EQ(turnOffDisplayMirroringForSession(1), DisplayConfiguration::invalidConnection);
}

TEST_F(FVEDisplayTest, ChoosingForMuchOrLittleWorkDoesNothing)
{
    graphics.addService();
    FVEUseHighPowerVideo();
    FVEUseLowPowerVideo();
    EXPECT_THAT(graphics.calls(), IsEmpty());
    EXPECT_THAT(displays.calls(), IsEmpty());
    EXPECT_THAT(lines(), IsEmpty());
}

} // namespace
