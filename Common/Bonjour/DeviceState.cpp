#include "Common/Bonjour/DeviceState.h"

#include "Common/Bonjour/QLNBonjourBrowser.h"
#include "Common/FVEConstants.h"
#include "Common/NSString_Additions.h"

namespace farview
{

bool isDeviceInUse(const NetService& service)
{
    const auto record = NetService::dictionaryFromTXTRecordData(service.TXTRecordData());
    const auto state = record.find(kFVEConnectionStateKey);
    const auto* value = state == record.end() ? nullptr : &state->second;
    return FVExConnectStateFromString(stringWithData(value)) == FVExConnectStateConnected;
}

} // namespace farview
