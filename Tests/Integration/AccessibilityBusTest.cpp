// The whole panel, operated by another program that has nothing but the accessibility bus: no
// mouse, no keyboard, no picture.

#include "Platform/Posix/PropertyLists/PropertyListFile.h"
#include "Tests/Support/AssistiveTechnology.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <gtest/gtest.h>

#include <QSet>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <memory>

using namespace farview;

namespace
{

using Objects = std::vector<AccessibleObject>;

const QStringList buttonRoles = {u"push button"_qs, u"check box"_qs};
const QStringList menuRoles = {u"menu item"_qs, u"check menu item"_qs};

class PanelOnTheAccessibilityBus : public testing::Test
{
protected:
    ~PanelOnTheAccessibilityBus() override
    {
        panel->sendSignal(SIGTERM);
        panel->waitForEnd();
    }
    void SetUp() override
    {
        ASSERT_TRUE(waitUntil([this] { return !showing().empty(); })) << "the panel's window";
    }

    static std::unique_ptr<ChildProcess> start(std::vector<std::string> command)
    {
        command[0] = FARVIEW_BINARY_DIR "/" + command[0];
        return std::make_unique<ChildProcess>(command);
    }
    /// A device that announces itself; 0 is whatever port is free.
    void startDevice(const std::string& name, const std::string& port = "0")
    {
        devices.push_back(
            start({"farview-device", "--name", name, "--headless", "--port", port, "--pair-once"}));
    }

    // What is on the screen.
    Objects showing() const
    {
        const auto found = technology.application(u"farview-preferences"_qs);
        Objects all;
        // A program is no object on the screen; its windows are.
        for (const auto& window : found ? found->children() : Objects{}) {
            const auto below = AssistiveTechnology::showingIn(window);
            all.insert(all.end(), below.begin(), below.end());
        }
        return all;
    }
    std::optional<AccessibleObject> find(const QStringList& roles, const QString& beginning) const
    {
        for (const auto& each : showing()) {
            if (each.name().startsWith(beginning) && roles.contains(each.role()))
                return each;
        }
        return std::nullopt;
    }
    std::optional<AccessibleObject> described(const QString& description) const
    {
        for (const auto& each : showing()) {
            if (each.description() == description)
                return each;
        }
        return std::nullopt;
    }
    bool says(const QString& beginning) const { return find({u"label"_qs}, beginning).has_value(); }
    bool isChecked(const QString& box) const
    {
        const auto found = find(buttonRoles, box);
        return found && found->has(AccessibleObject::checked);
    }

    // What a screen reader does.
    void perform(const QString& action, const QStringList& roles, const QString& name) const
    {
        ASSERT_TRUE(waitUntil([&] { return find(roles, name).has_value(); })) << name.toStdString();
        const auto found = find(roles, name);
        ASSERT_TRUE(found && found->perform(action))
            << name.toStdString() << ": " << found->actions().join(u' ').toStdString();
    }
    void press(const QString& button) const { perform(u"Press"_qs, buttonRoles, button); }
    /// Says that the device shows the same digits. A question takes no yes in its first moment.
    void confirm() const
    {
        const QString yes = u"Yes, These Digits"_qs;
        ASSERT_TRUE(waitUntil([&] { return says(u"Does "_qs); }));
        ASSERT_TRUE(waitUntil([&] {
            const auto button = find(buttonRoles, yes);
            return !button || (button->perform(u"Press"_qs) && !find(buttonRoles, yes));
        }));
    }
    void toggle(const QString& box) const { perform(u"Toggle"_qs, buttonRoles, box); }
    /// The switch takes nothing while its knob is on the way.
    void toggleSwitch() const
    {
        ASSERT_TRUE(waitUntil([&] {
            const auto found = find(buttonRoles, u"Farview"_qs);
            return found && !found->has(AccessibleObject::busy);
        }));
        toggle(u"Farview"_qs);
    }
    void openTab(const QString& name) const { perform(u"Press"_qs, {u"page tab"_qs}, name); }
    void turnOn() const
    {
        openTab(u"Virtual Screen"_qs);
        toggleSwitch();
        ASSERT_TRUE(waitUntil([&] { return says(u"Farview is currently on."_qs); }));
    }
    std::optional<AccessibleObject> popUp() const { return described(u"Virtual screen"_qs); }
    void choose(const QString& entry) const
    {
        // A menu that is open stays as it was, so it is closed and opened until the entry is there.
        ASSERT_TRUE(waitUntil([&] {
            if (const auto button = popUp())
                button->perform(u"Press"_qs);
            return find(menuRoles, entry).has_value();
        })) << entry.toStdString();
        perform(u"Press"_qs, menuRoles, entry);
    }

    // What is stored.
    std::optional<PropertyList> stored(const std::string& key) const
    {
        const auto file = readDictionaryFile(home.path("config/farview/com.quillon.Farview.plist"));
        const auto* all = file.list ? file.list->get<PropertyList::Dictionary>() : nullptr;
        const auto found = all ? all->find(key) : PropertyList::Dictionary::const_iterator{};
        return all && found != all->end() ? std::optional(found->second) : std::nullopt;
    }
    bool stores(const std::string& key, const PropertyList& value) const
    {
        return waitUntil([&] { return stored(key) == value; });
    }

    TemporaryFolder home;
    ScopedEnvironment config{"XDG_CONFIG_HOME", home.path("config").c_str()};
    ScopedEnvironment data{"XDG_DATA_HOME", home.path("data").c_str()};
    ScopedEnvironment root{"FARVIEW_SYSTEM_ROOT", nullptr};
    OrphanCollector servers{"ScreenCapture"};
    OrphanCollector statusItems{"FarviewStatusIt"};
    AssistiveTechnology technology;
    std::vector<std::unique_ptr<ChildProcess>> devices;
    std::unique_ptr<ChildProcess> panel = start({"farview-preferences"});
};

TEST_F(PanelOnTheAccessibilityBus, TurnsFarviewOnAndOffWithTheSwitchAndTheWords)
{
    turnOn();
    EXPECT_TRUE(isChecked(u"Farview"_qs));
    EXPECT_TRUE(stores("currentState", std::int64_t{1}));
    toggleSwitch();
    EXPECT_TRUE(stores("currentState", std::int64_t{0}));
    EXPECT_TRUE(waitUntil([&] { return !isChecked(u"Farview"_qs); }));
    EXPECT_TRUE(waitUntil([&] { return says(u"Farview is currently turned off."_qs); }));
    press(u"On"_qs);
    EXPECT_TRUE(stores("currentState", std::int64_t{1}));
    press(u"Off"_qs);
    EXPECT_TRUE(stores("currentState", std::int64_t{0}));
}

TEST_F(PanelOnTheAccessibilityBus, OpensThePopUpAndChoosesADevice)
{
    startDevice("Desk");
    turnOn();
    choose(u"Desk"_qs);
    confirm();
    EXPECT_TRUE(waitUntil([&] { return popUp() && popUp()->name() == u"Desk"_qs; }));
    EXPECT_TRUE(waitUntil([&] { return !find(menuRoles, u""_qs); })) << "the menu has closed";
    EXPECT_TRUE(waitUntil([&] {
        const auto device = stored("currentVirtualScreenDeviceName");
        return device && device->is<std::string>() && !device->get<std::string>()->empty();
    }));
}

TEST_F(PanelOnTheAccessibilityBus, OpensEachTab)
{
    openTab(u"Virtual Screen"_qs);
    EXPECT_TRUE(waitUntil([&] { return popUp().has_value(); }));
    openTab(u"Settings"_qs);
    EXPECT_TRUE(waitUntil([&] { return find(buttonRoles, u"Start at login"_qs).has_value(); }));
    EXPECT_FALSE(popUp());
    press(u"Choose a Device"_qs);
    EXPECT_TRUE(waitUntil([&] { return popUp().has_value(); }));
}

TEST_F(PanelOnTheAccessibilityBus, TogglesEachBoxThereAndBack)
{
    openTab(u"Settings"_qs);
    const std::vector<std::pair<QString, std::string>> boxes = {
        {u"Connect automatically"_qs, "autoConnectOption"},
        {u"Show the Farview status icon"_qs, "showInMenuBar"},
        {u"Use the device's touch input"_qs, "enableDisplayTouch"},
        {u"Use the device's full"_qs, "enableRetinaDisplay"},
        {u"Move windows back"_qs, "autoMoveWindowsBackOption"},
        {u"Check for updates automatically"_qs, "autoUpdateOption"}};
    for (const auto& [box, key] : boxes) {
        const bool before = isChecked(box);
        for (const bool after : {!before, before}) {
            toggle(box);
            EXPECT_TRUE(stores(key, after)) << key;
            EXPECT_TRUE(waitUntil([&] { return isChecked(box) == after; })) << key;
        }
    }
}

TEST_F(PanelOnTheAccessibilityBus, TogglesTheStartAtLoginAndAsksBeforeHighResolutions)
{
    openTab(u"Settings"_qs);
    const auto entries = [this] {
        std::error_code missing;
        return std::distance(
            std::filesystem::directory_iterator(home.path("config/autostart"), missing),
            std::filesystem::directory_iterator());
    };
    toggle(u"Start at login"_qs);
    EXPECT_TRUE(waitUntil([&] { return entries() == 1 && isChecked(u"Start at login"_qs); }));
    toggle(u"Start at login"_qs);
    EXPECT_TRUE(waitUntil([&] { return !isChecked(u"Start at login"_qs); }));

    toggle(u"Offer HiDPI resolutions"_qs);
    EXPECT_TRUE(waitUntil([&] { return says(u"HiDPI resolutions are off."_qs); }));
    EXPECT_TRUE(isChecked(u"Offer HiDPI resolutions"_qs));
    press(u"Cancel"_qs);
    EXPECT_TRUE(waitUntil([&] { return !says(u"HiDPI resolutions are off."_qs); }));
    EXPECT_TRUE(waitUntil([&] { return !isChecked(u"Offer HiDPI resolutions"_qs); }));
}

/// The panel with the devices Desk and Sofa in its table.
class TableOnTheAccessibilityBus : public PanelOnTheAccessibilityBus
{
protected:
    void SetUp() override
    {
        PanelOnTheAccessibilityBus::SetUp();
        openTab(u"Settings"_qs);
        startDevice("Desk");
        startDevice("Sofa");
        ASSERT_TRUE(waitUntil([&] { return rows().size() == 2; }));
    }

    Objects cells() const
    {
        Objects found = showing();
        std::erase_if(found, [](const auto& each) { return each.role() != u"cell"_qs; });
        return found;
    }
    /// The names of the devices, from top to bottom.
    QStringList rows() const
    {
        QStringList names;
        for (const auto& each : cells()) {
            if (!each.actions().contains(u"Toggle"_qs))
                names += each.name();
        }
        return names;
    }
    /// The box stands before the name.
    std::optional<AccessibleObject> boxOf(const QString& device) const
    {
        const auto all = cells();
        const auto name = std::find_if(all.begin(), all.end(),
                                       [&](const auto& each) { return each.name() == device; });
        return name == all.begin() || name == all.end() ? std::nullopt
                                                        : std::optional(*std::prev(name));
    }
    bool isTicked(const QString& device) const
    {
        const auto box = boxOf(device);
        return box && box->has(AccessibleObject::checked);
    }
    bool storesDevices(const std::vector<std::string>& names) const
    {
        return waitUntil([&] {
            const auto value = stored("autoConnectDevices");
            const auto* list = value ? value->get<PropertyList::Array>() : nullptr;
            return list && *list == PropertyList::Array(names.begin(), names.end());
        });
    }
};

TEST_F(TableOnTheAccessibilityBus, ItsDevicesAreTickedAndUnticked)
{
    for (const bool ticked : {true, false}) {
        ASSERT_TRUE(boxOf(u"Sofa"_qs));
        EXPECT_TRUE(boxOf(u"Sofa"_qs)->perform(u"Toggle"_qs));
        EXPECT_TRUE(waitUntil([&] { return isTicked(u"Sofa"_qs) == ticked; }));
        EXPECT_FALSE(isTicked(u"Desk"_qs));
        EXPECT_TRUE(
            storesDevices(ticked ? std::vector<std::string>{"Sofa"} : std::vector<std::string>{}));
    }
}

TEST_F(TableOnTheAccessibilityBus, ItsDevicesAreBroughtIntoAnotherOrder)
{
    for (const QString& device : {u"Desk"_qs, u"Sofa"_qs}) {
        ASSERT_TRUE(boxOf(device));
        ASSERT_TRUE(boxOf(device)->perform(u"Toggle"_qs));
        ASSERT_TRUE(waitUntil([&] { return isTicked(device); }));
    }
    ASSERT_TRUE(storesDevices({"Desk", "Sofa"}));
    perform(u"Move up"_qs, {u"cell"_qs}, u"Sofa"_qs);
    EXPECT_TRUE(waitUntil([&] { return rows() == QStringList{u"Sofa"_qs, u"Desk"_qs}; }));
    perform(u"Move down"_qs, {u"cell"_qs}, u"Sofa"_qs);
    EXPECT_TRUE(waitUntil([&] { return rows() == QStringList{u"Desk"_qs, u"Sofa"_qs}; }));
}

TEST_F(TableOnTheAccessibilityBus, ADeviceIsForgottenAndBroughtBack)
{
    ASSERT_TRUE(boxOf(u"Sofa"_qs));
    EXPECT_FALSE(boxOf(u"Sofa"_qs)->actions().contains(u"Forget"_qs)) << "it is there, not ticked";
    ASSERT_TRUE(boxOf(u"Sofa"_qs)->perform(u"Toggle"_qs));
    ASSERT_TRUE(waitUntil([&] { return isTicked(u"Sofa"_qs); }));
    perform(u"Forget"_qs, {u"cell"_qs}, u"Sofa"_qs);
    EXPECT_TRUE(waitUntil([&] { return !isTicked(u"Sofa"_qs); }));
    EXPECT_TRUE(storesDevices({}));
    perform(u"Undo Forget"_qs, {u"cell"_qs}, u"Sofa"_qs);
    EXPECT_TRUE(waitUntil([&] { return isTicked(u"Sofa"_qs); }));
    EXPECT_TRUE(storesDevices({"Sofa"}));
}

TEST_F(PanelOnTheAccessibilityBus, FillsTheSheetForAnAddressCancelsAndConfirmsIt)
{
    const QStringList field = {u"text"_qs};
    const QString address = u"Address of the device"_qs;
    startDevice("Desk", "6001");
    turnOn();
    for (const bool confirms : {false, true}) {
        choose(u"Connect To Other..."_qs);
        ASSERT_TRUE(waitUntil([&] { return find(field, address).has_value(); }));
        EXPECT_FALSE(find(buttonRoles, u"OK"_qs)->has(AccessibleObject::sensitive));
        ASSERT_TRUE(find(field, address)->setText(u"127.0.0.1"_qs));
        EXPECT_EQ(find(field, address)->text(), u"127.0.0.1"_qs);
        EXPECT_TRUE(waitUntil(
            [&] { return find(buttonRoles, u"OK"_qs)->has(AccessibleObject::sensitive); }));
        press(confirms ? u"OK"_qs : u"Cancel"_qs);
        const bool closes = waitUntil([&] { return confirms || !find(field, address); });
        EXPECT_TRUE(closes);
    }
    confirm();
    EXPECT_TRUE(stores("lastOtherDeviceName", "127.0.0.1"));
}

/// What holds the places of others is not met as a control.
const QSet<QString> containers = {u"filler"_qs, u"panel"_qs, u"layered pane"_qs, u"scroll pane"_qs,
                                  u"viewport"_qs};
const QSet<QString> fittingRoles = {u"frame"_qs,       u"dialog"_qs,      u"label"_qs,
                                    u"push button"_qs, u"check box"_qs,   u"text"_qs,
                                    u"page tab"_qs,    u"button menu"_qs, u"page tab list"_qs,
                                    u"table"_qs,       u"cell"_qs,        u"column header"_qs,
                                    u"popup menu"_qs,  u"menu item"_qs,   u"check menu item"_qs,
                                    u"animation"_qs,   u"separator"_qs};

class ObjectsOnTheAccessibilityBus : public TableOnTheAccessibilityBus
{
protected:
    /// Each object that is on the screen now; tells how many controls it met.
    int expectSense() const
    {
        int met = 0;
        for (const auto& each : showing()) {
            const QString role = each.role();
            const std::string road = each.road().toStdString();
            // The tabs hand the keyboard to their bar, and are named all the same.
            const bool isNamed = !each.name().trimmed().isEmpty();
            if (containers.contains(role)) {
                EXPECT_TRUE(isNamed || !each.has(AccessibleObject::focusable)) << road;
                continue;
            }
            EXPECT_TRUE(fittingRoles.contains(role)) << road;
            // A label may have nothing to say at the moment.
            EXPECT_TRUE(isNamed || role == u"separator"_qs || role == u"label"_qs) << road;
            EXPECT_FALSE(each.description().contains(u'<'))
                << road << each.description().toStdString();
            expectStateThatFits(each, role);
            ++met;
        }
        return met;
    }
    static void expectStateThatFits(const AccessibleObject& object, const QString& role)
    {
        const std::string road = object.road().toStdString();
        EXPECT_TRUE(object.has(AccessibleObject::visible)) << road;
        const bool isOperated = !object.actions().filter(u"Press"_qs).isEmpty() ||
                                !object.actions().filter(u"Toggle"_qs).isEmpty();
        const bool isControl = buttonRoles.contains(role) || role == u"text"_qs;
        if (isControl && object.has(AccessibleObject::sensitive)) {
            EXPECT_TRUE(object.has(AccessibleObject::focusable)) << road;
            EXPECT_TRUE(isOperated || role == u"text"_qs) << road;
        }
    }
};

TEST_F(ObjectsOnTheAccessibilityBus, HaveANameARoleAndAState)
{
    EXPECT_GE(expectSense(), 20) << "on the settings";
    toggle(u"Offer HiDPI resolutions"_qs);
    ASSERT_TRUE(waitUntil([&] { return says(u"HiDPI resolutions are off."_qs); }));
    EXPECT_GE(expectSense(), 24) << "with the window for HiDPI resolutions";
    press(u"Cancel"_qs);
    turnOn();
    EXPECT_GE(expectSense(), 10) << "on the main tab";
    ASSERT_TRUE(popUp()->perform(u"Press"_qs));
    ASSERT_TRUE(waitUntil([&] { return find(menuRoles, u"Sofa"_qs).has_value(); }));
    EXPECT_GE(expectSense(), 14) << "with the menu";
    perform(u"Press"_qs, menuRoles, u"Connect To Other..."_qs);
    ASSERT_TRUE(waitUntil([&] { return find({u"text"_qs}, u""_qs).has_value(); }));
    EXPECT_GE(expectSense(), 14) << "with the sheet";
}

} // namespace
