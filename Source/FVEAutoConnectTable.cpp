#include "Source/FVEPreferencePane.h"

#include "Common/FVEPreferences.h"
#include "Common/NSString_Additions.h"
#include "Platform/FileManager.h"
#include "Platform/Platform.h"
#include "Source/DevicesTable.h"

using farview::CellValue;
using farview::DeviceRow;
using farview::Object;
using farview::PropertyList;
using farview::TableView;

namespace
{

/// What the table shows for a name; a stored name that is no text shows as an empty one.
std::string shownName(const PropertyList& name)
{
    if (const auto* text = name.get<std::string>())
        return *text;
    if (const auto* number = name.get<std::int64_t>())
        return std::to_string(*number);
    return {};
}

} // namespace

std::string FVEPreferencePane::applicationSupportFolder()
{
    return applicationSupportPath() + "/" + kFVEApplicationSupportFolderName;
}

std::string FVEPreferencePane::seenDevicesFilename() const
{
    return applicationSupportFolder() + "/" + kSeenDevicesForAutoConnectTableFilename;
}

int FVEPreferencePane::countOfCheckedDevices() const
{
    return farview::countOfChosenRows(autoConnectDevices());
}

void FVEPreferencePane::buildDeviceList()
{
    const auto chosen = FVEPreferences::sharedAppPrefs().autoConnectDevices();
    std::vector<std::string> found;
    found.reserve(listedServices().size());
    for (const auto& service : listedServices())
        found.push_back(service->name());
    const auto file = mPlatform.fileManager->propertyListWithContentsOfFile(seenDevicesFilename());
    const auto* seen = file ? file->get<PropertyList::Array>() : nullptr;
    setAutoConnectDevices(
        farview::autoConnectRows(chosen, found, seen ? *seen : PropertyList::Array{}));
    mListWasBuilt = true;
    autoConnectTable()->reloadData();
    showWhetherOrderIsStored();
}

void FVEPreferencePane::writeDeviceList()
{
    // A pane that was closed before it built its list knows of no device, and must not say so.
    if (!mListWasBuilt)
        return;
    const auto stored = farview::rowsToStore(autoConnectDevices());
    mPlatform.fileManager->createDirectoryAtPath(applicationSupportFolder());
    mPlatform.fileManager->writePropertyList(stored.seen, seenDevicesFilename());
    FVEPreferences::sharedAppPrefs().setAutoConnectDevices(stored.chosen);
    showWhetherOrderIsStored();
}

bool FVEPreferencePane::determineIfNoDevicesSelectedEnabled()
{
    auto& preferences = FVEPreferences::sharedAppPrefs();
    const bool autoConnects = preferences.autoConnectOption();
    if (connectedToOtherDevice() || !autoConnects || !selectedNetService())
        return true;
    return farview::noDeviceEntryEnabled(autoConnects, connectedToOtherDevice(),
                                         &selectedNetService()->name(),
                                         preferences.autoConnectDevices());
}

void FVEPreferencePane::autoConnectPressed(Object* sender)
{
    const auto* checkBox = dynamic_cast<farview::Button*>(sender);
    if (!checkBox)
        return;
    const bool on = checkBox->state() == 1;
    showAutoConnectTable(on);
    autoConnectTable()->reloadData();
    FVEPreferences::sharedAppPrefs().setAutoConnectOption(on);
}

void FVEPreferencePane::showAutoConnectTable(bool shown)
{
    autoConnectTable()->setEnabled(shown);
    autoConnectTable()->enclosingScrollView().setHidden(!shown);
    autoConnectTable()->setHidden(!shown);
    showWhetherOrderIsStored();
}

int FVEPreferencePane::numberOfRowsInTableView(TableView& /*table*/)
{
    return autoConnect() && autoConnect()->state() == 1
               ? static_cast<int>(autoConnectDevices().size())
               : 0;
}

CellValue FVEPreferencePane::objectValueForTableColumn(TableView& /*table*/,
                                                       std::string_view column, int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= autoConnectDevices().size())
        return {};
    const auto& device = autoConnectDevices()[static_cast<std::size_t>(row)];
    if (column == kDevicesTableAutoConnectFlag)
        return device.autoConnect;
    if (column == kDevicesTableDeviceName)
        return shownName(device.name);
    return {};
}

std::string FVEPreferencePane::remarkOnRow(TableView& /*table*/, int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= autoConnectDevices().size())
        return {};
    const auto& device = autoConnectDevices()[static_cast<std::size_t>(row)];
    if (device.onNetwork)
        return {};
    return localized(device.orderKind == farview::DeviceOrderKind::seen
                         ? "Seen before, not on the network now"
                         : "Not on the network now");
}

void FVEPreferencePane::setObjectValue(TableView& table, const CellValue& value,
                                       std::string_view column, int row)
{
    const auto* flag = std::get_if<bool>(&value);
    auto rows = autoConnectDevices();
    if (column != kDevicesTableAutoConnectFlag || !flag || row < 0 ||
        static_cast<std::size_t>(row) >= rows.size())
        return;
    rows[static_cast<std::size_t>(row)].autoConnect = *flag;
    setAutoConnectDevices(std::move(rows));
    writeDeviceList();
    buildDeviceList();
    table.reloadData();
}
