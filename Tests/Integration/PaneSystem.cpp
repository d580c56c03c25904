#include "Tests/Integration/PaneSystem.h"

#include "Platform/Bundle.h"
#include "Tests/Link/PairedBeforehand.h"
#include "Tests/Support/Isolation.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace farview
{

namespace
{

constexpr const char* serverName = "ScreenCapture";
// The system cuts names at 15 characters.
constexpr const char* statusItemName = "FarviewStatusIt";
constexpr const char* keeperName = "farview-keeper";

void killAllNamed(const std::string& name)
{
    for (const auto& each : processesBelow(::getpid())) {
        if (each.shortName != name)
            continue;
        ::kill(each.pid, SIGKILL);
        ::waitpid(each.pid, nullptr, 0);
    }
}

} // namespace

void PaneSystem::SetUp()
{
    if (const std::string reason = whyNotIsolated(); !reason.empty())
        GTEST_SKIP() << reason;
    // Some tests crash the server on purpose.
    const rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    const auto set = [this](const char* name, const std::string& value) {
        environment.push_back(std::make_unique<ScopedEnvironment>(name, value.c_str()));
    };
    set("DBUS_SESSION_BUS_ADDRESS", bus.address());
    set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path("no-system-bus"));
    set("XDG_CONFIG_HOME", home.path("config"));
    set("XDG_DATA_HOME", home.path("data"));
    set("XDG_RUNTIME_DIR", home.path("runtime"));
    set("HOME", home.path());
    set("FARVIEW_SYSTEM_CONFIG", home.path("system"));
    set("FARVIEW_LOCAL_ROOT", home.path("local"));
    set("LANG", "C");
    set("QT_QPA_PLATFORM", "offscreen");
    std::filesystem::create_directory(home.path("runtime"));
    std::filesystem::permissions(home.path("runtime"), std::filesystem::perms::owner_all);
}

PaneSystem::~PaneSystem()
{
    pane.reset();
    installed.reset();
    desktop.reset();
    // Whoever keeps the server alive goes first.
    killAllNamed(keeperName);
    killAllNamed(serverName);
    killAllNamed(statusItemName);
}

void PaneSystem::load()
{
    desktop.emplace(DesktopPlatformOptions{});
    if (areConfirmed)
        pairBeforehand(*platform().preferences, {"Desk", "Sofa", "Spare", "Willing"});
    installed.emplace(platform());
    bundle = platform().bundles->bundleWithPath(bundlePath);
    ASSERT_NE(bundle, nullptr);
    listenTo(kServerDisconnectedFromDevice);
    listenTo(kQueryResultForConnectedHost);
    reload();
}

void PaneSystem::reload()
{
    pane = std::make_shared<FVEPreferencePane>(platform());
    ASSERT_TRUE(pane->initWithBundle(bundle));
    connectOutlets();
    pane->mainViewDidLoad();
    // It has tests of its own, and would only write and ask beside the pane here.
    pane->setStatusItemApplication(std::nullopt);
}

/// Puts the controls into the state that the interface file gives them.
void PaneSystem::connectOutlets()
{
    for (const auto& outlet : pane->outlets())
        outlet.connect(*pane);
    pane->tabView()->setIdentifiers({"Main", "Settings"});
    pane->warningImage()->setHidden(true);
    pane->waitingForServerIndicator()->setHidden(true);
    pane->reinstallDriversButton()->setHidden(true);
    pane->autoConnect()->setTarget(pane);
    pane->autoConnect()->setAction({"autoConnectPressed:"});
}

void PaneSystem::show()
{
    pane->willSelect();
    pane->didSelect();
}

void PaneSystem::turnOn()
{
    pane->onTextPressed(nullptr);
    ASSERT_TRUE(serverAnswers());
}

void PaneSystem::showWithDesk()
{
    startDesk();
    load();
    show();
    turnOn();
    ASSERT_TRUE(lists("Desk")) << text("device.log");
}

void PaneSystem::showConnectedToDesk()
{
    showWithDesk();
    ASSERT_TRUE(choose("Desk"));
    ASSERT_TRUE(selects("Desk")) << text("device.log");
}

std::unique_ptr<ChildProcess> PaneSystem::start(const std::vector<std::string>& command,
                                                const std::string& log)
{
    std::vector<std::string> whole{"sh", "-c",
                                   "exec \"$0\" \"$@\" >>'" + home.path(log) + "' 2>&1"};
    whole.insert(whole.end(), command.begin(), command.end());
    return std::make_unique<ChildProcess>(whole);
}

void PaneSystem::startDesk(const std::vector<std::string>& more)
{
    std::vector<std::string> command{FARVIEW_BINARY_DIR "/farview-device",
                                     "--headless",
                                     "--name",
                                     "Desk",
                                     "--host-name",
                                     "desk-7"};
    command.insert(command.end(), more.begin(), more.end());
    device = start(command, "device.log");
}

void PaneSystem::announce(const std::string& name, const std::string& hostName, std::uint16_t port)
{
    publishers.push_back(std::make_unique<DesktopNetServicePublisher>(publisherLog));
    publishers.back()->publish({name,
                                kVirtualScreenServiceName,
                                port,
                                {{kFVEConnectionStateKey, Data::fromText("NotConnected")}},
                                hostName});
}

std::shared_ptr<MenuItem> PaneSystem::entry(const std::string& title) const
{
    const auto& items = pane->virtualScreenSelectionPopup()->menu()->items();
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const auto& item) { return item->title == title; });
    return found == items.end() ? nullptr : *found;
}

bool PaneSystem::lists(const std::string& title, Limit limit) const
{
    return waitUntil([&] { return entry(title) != nullptr; }, limit);
}

bool PaneSystem::unlists(const std::string& title, Limit limit) const
{
    return waitUntil([&] { return entry(title) == nullptr; }, limit);
}

bool PaneSystem::choose(const std::string& title)
{
    const auto canBeChosen = [&] {
        const auto item = entry(title);
        return item && item->canBeChosen() && pane->virtualScreenSelectionPopup()->isEnabled();
    };
    if (!waitUntil(canBeChosen))
        return false;
    pane->virtualScreenSelectionPopup()->choose(entry(title));
    return true;
}

std::string PaneSystem::selectedTitle() const
{
    const auto item = pane->virtualScreenSelectionPopup()->selectedItem();
    return item ? item->title : std::string();
}

bool PaneSystem::selects(const std::string& title, Limit limit) const
{
    const auto isInForce = [&] {
        const auto& service = pane->selectedNetService();
        return service && service->name() == title && selectedTitle() == title;
    };
    return waitUntil(isInForce, limit);
}

bool PaneSystem::selectsNothing(Limit limit) const
{
    return waitUntil([&] { return pane->selectedNetService() == nullptr; }, limit);
}

bool PaneSystem::errorShows() const
{
    return pane->instructionsLabel()->stringValue() == connectionErrorText &&
           !pane->warningImage()->isHidden();
}

bool PaneSystem::switchTurns(int state, Limit limit) const
{
    return waitUntil([&] { return switchState() == state; }, limit);
}

std::vector<pid_t> PaneSystem::servers() const
{
    std::vector<pid_t> found;
    for (const auto& each : processesBelow(::getpid())) {
        if (each.shortName == serverName)
            found.push_back(each.pid);
    }
    return found;
}

bool PaneSystem::serversAre(std::size_t count, Limit limit) const
{
    return waitUntil([&] { return servers().size() == count; }, limit);
}

bool PaneSystem::serverAnswers()
{
    const auto answers = [&] {
        return heard(kServerDisconnectedFromDevice) + heard(kQueryResultForConnectedHost);
    };
    const auto before = answers();
    // Asked again and again: a server that is just starting does not hear the first question.
    return waitUntil([&] {
        if (answers() == before)
            post(kQueryRequestForConnectedHost);
        return answers() > before;
    });
}

std::string PaneSystem::text(const std::string& log) const
{
    std::ostringstream all;
    all << std::ifstream(home.path(log)).rdbuf();
    return all.str();
}

bool PaneSystem::deviceSays(const std::string& words, Limit limit) const
{
    return waitUntil([&] { return text("device.log").find(words) != std::string::npos; }, limit);
}

std::size_t PaneSystem::heard(const std::string& name) const
{
    return static_cast<std::size_t>(std::count(mHeard.begin(), mHeard.end(), name));
}

void PaneSystem::listenTo(const std::string& name)
{
    const auto note = [this](const Notification& posted) { mHeard.push_back(posted.name()); };
    platform().distributedNotificationCenter->addObserver(mListener, note, name, "");
}

void PaneSystem::post(const char* name, DistributedNotificationCenter::TextUserInfo userInfo)
{
    platform().distributedNotificationCenter->postNotificationName(name, "", std::move(userInfo),
                                                                   3);
}

} // namespace farview
