#include "PaneBundle/TrayHint.h"

#include "Platform/Fake/FakeLog.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/StatusNotifierWatcher.h"
#include "Tests/Support/TestBus.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace
{

TEST(TrayHint, TheBoxSaysThatThereIsNoTrayForAsLongAsThatIsSo)
{
    PrivateBus bus;
    const SessionBusScope scope(bus.address());
    farview::FakeLog log;
    TestBus session(log);
    const auto box = std::make_shared<farview::Button>();
    const farview::TrayHint hint(session, box, "no tray");
    EXPECT_TRUE(waitUntil([&] { return box->toolTip() == "no tray"; }));

    std::optional<StatusNotifierWatcher> tray(bus.address());
    EXPECT_TRUE(waitUntil([&] { return box->toolTip().empty(); }));
    tray.reset();
    EXPECT_TRUE(waitUntil([&] { return box->toolTip() == "no tray"; }));
}

TEST(TrayHint, AListOfIconsThatNobodyShowsIsNoTray)
{
    PrivateBus bus;
    const SessionBusScope scope(bus.address());
    farview::FakeLog log;
    TestBus session(log);
    const auto box = std::make_shared<farview::Button>();
    StatusNotifierWatcher tray(bus.address(), false);
    const farview::TrayHint hint(session, box, "no tray");
    EXPECT_TRUE(waitUntil([&] { return box->toolTip() == "no tray"; }));
    tray.addHost();
    EXPECT_TRUE(waitUntil([&] { return box->toolTip().empty(); }));
    tray.removeHost();
    EXPECT_TRUE(waitUntil([&] { return box->toolTip() == "no tray"; }));
}

TEST(TrayHint, OutlivesItsBox)
{
    PrivateBus bus;
    const SessionBusScope scope(bus.address());
    farview::FakeLog log;
    TestBus session(log);
    auto box = std::make_shared<farview::Button>();
    const std::weak_ptr<farview::Button> weak = box;
    const farview::TrayHint hint(session, box, "no tray");
    box.reset();
    EXPECT_TRUE(weak.expired());
    const StatusNotifierWatcher tray(bus.address());
    runLoopFor(std::chrono::milliseconds(50));
    EXPECT_TRUE(session.isConnected());
}

} // namespace
