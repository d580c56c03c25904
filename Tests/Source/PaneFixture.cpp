#include "Tests/Source/PaneFixture.h"

#include <algorithm>

using farview::Data;
using farview::PropertyList;

PaneFixture::PaneFixture()
{
    bundle = fake.bundles.add("/opt/Farview Preferences.prefPane");
    bundle->addResource("ScreenCapture", "app");
    bundle->addResource("FarviewStatusItem", "app");
    bundle->addResource("Farview Documentation", "pdf");
    bundle->addResource("com.quillon.displayresolutionson", "");
    bundle->addResource("com.quillon.displayresolutionsoff", "");
    bundle->setInfo("QLNInstallerURL", "https://example.org/install");
    bundle->setInfo("CFBundleVersion", "1.2");
    bundle->setInfo("CFBundleIdentifier", kFVEPaneBundleID);
    driver = fake.registry.publish("QLExGFX");
    newPane();
}

void PaneFixture::newPane()
{
    pane = std::make_shared<FVEPreferencePane>(fake.platform());
    ASSERT_TRUE(pane->initWithBundle(bundle));
    for (const auto& outlet : pane->outlets())
        outlet.connect(*pane);
    pane->tabView()->setIdentifiers({"Main", "Settings"});
    pane->warningImage()->setHidden(true);
    pane->waitingForServerIndicator()->setHidden(true);
    pane->reinstallDriversButton()->setHidden(true);
    pane->screenDiagnoseButton()->setHidden(true);
    pane->screenPlaceBox()->setHidden(true);
    pane->pairingBox()->setHidden(true);
    pane->typingLabel()->setHidden(true);
    pane->furtherDevicesTable()->setHidden(true);
    pane->mayTypeBox()->setHidden(true);
    pane->windowsHintLabel()->setHidden(true);
    pane->virtualScreenSelectionPopup()->setFrame({{10, 20}, {fullWidth, 26}}, false);
    pane->placeholderForFullPopupSize()->setFrame({{0, 0}, {fullWidth, 5}}, false);
    pane->placeholderForReducedPopupSize()->setFrame({{0, 0}, {reducedWidth, 5}}, false);
    pane->autoConnect()->setTarget(pane);
    pane->autoConnect()->setAction({"autoConnectPressed:"});
}

void PaneFixture::show()
{
    pane->willSelect();
    pane->didSelect();
    fake.runLoop.runUntilIdle();
}

void PaneFixture::hide()
{
    pane->willUnselect();
    fake.runLoop.runUntilIdle();
}

void PaneFixture::showWithState(long state)
{
    setStored(kCurrentState, std::int64_t{state});
    load();
    show();
}

void PaneFixture::changeElsewhere(const std::string& key, PropertyList value)
{
    setStored(key, std::move(value));
    serverPosts(kFVEPrefsDidChangeNotification);
}

void PaneFixture::setStored(const std::string& key, PropertyList value)
{
    fake.preferences.writeAsAnotherProcess(key, std::move(value), kApplicationID);
}

std::optional<PropertyList> PaneFixture::stored(const std::string& key) const
{
    return fake.preferences.storedValue(key, kApplicationID);
}

std::optional<std::string> PaneFixture::storedText(const std::string& key) const
{
    const auto value = stored(key);
    const auto* text = value ? value->get<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

farview::FakeDevice PaneFixture::device(const std::string& name, const std::string& hostName,
                                        const std::string& state)
{
    return {name, hostName, {{"ConnState", Data::fromText(state)}}};
}

void PaneFixture::announce(std::vector<farview::FakeDevice> devices)
{
    fake.discovery.announce(std::move(devices));
    fake.runLoop.runUntilIdle();
}

void PaneFixture::leave(const std::vector<std::string>& names)
{
    fake.discovery.remove(names);
    fake.runLoop.runUntilIdle();
}

std::shared_ptr<farview::NetService> PaneFixture::listed(const std::string& name) const
{
    const auto& services = pane->bonjourBrowser()->activeServiceList();
    const auto found = std::find_if(services.begin(), services.end(),
                                    [&](const auto& each) { return each->name() == name; });
    return found == services.end() ? nullptr : *found;
}

void PaneFixture::serverPosts(const std::string& name,
                              farview::DistributedNotificationCenter::TextUserInfo userInfo)
{
    fake.distributedNotificationCenter.postFromAnotherProcess(name, std::move(userInfo));
    fake.runLoop.runUntilIdle();
}

void PaneFixture::serverConnectedTo(const std::string& hostName)
{
    serverPosts(kServerConnectedToDevice,
                {{"DeviceName", hostName}, {"DeviceAddress", "192.168.1.20"}});
}

void PaneFixture::showWithPad()
{
    showWithState(1);
    announce({device("Pad", "pad.local")});
}

void PaneFixture::showWithPadAndSlab()
{
    showWithState(1);
    announce({device("Pad", "pad.local"), device("Slab", "slab.local")});
}

void PaneFixture::showConnectedToPad()
{
    showWithPadAndSlab();
    serverConnectedTo("pad.local");
}

PaneFixture::Texts PaneFixture::menuTitles() const
{
    Texts titles;
    for (const auto& item : pane->virtualScreenSelectionPopup()->menu()->items())
        titles.push_back(item->title);
    return titles;
}

std::shared_ptr<farview::MenuItem> PaneFixture::entry(const std::string& title) const
{
    const auto& items = pane->virtualScreenSelectionPopup()->menu()->items();
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const auto& item) { return item->title == title; });
    return found == items.end() ? nullptr : *found;
}

std::string PaneFixture::selectedTitle() const
{
    const auto item = pane->virtualScreenSelectionPopup()->selectedItem();
    return item ? item->title : std::string{};
}

bool PaneFixture::choose(const std::string& title)
{
    const auto item = entry(title);
    if (!item || !popUpIsEnabled() || !item->canBeChosen())
        return false;
    pane->virtualScreenSelectionPopup()->choose(item);
    return true;
}

std::vector<PaneFixture::Post> PaneFixture::posts(const char* name) const
{
    return fake.distributedNotificationCenter.postsNamed(name);
}

PaneFixture::Texts PaneFixture::rows() const
{
    Texts names;
    for (const auto& row : pane->autoConnectDevices()) {
        const auto* name = row.name.get<std::string>();
        names.push_back((row.autoConnect ? "*" : "") + (name ? *name : "?"));
    }
    return names;
}

PaneFixture::Texts PaneFixture::seenDevices() const
{
    auto& files = const_cast<farview::FakeFileManager&>(fake.fileManager);
    const auto list = files.propertyListWithContentsOfFile(pane->seenDevicesFilename());
    Texts names;
    if (const auto* array = list ? list->get<PropertyList::Array>() : nullptr) {
        for (const auto& name : *array)
            names.push_back(*name.get<std::string>());
    }
    std::sort(names.begin(), names.end());
    return names;
}
