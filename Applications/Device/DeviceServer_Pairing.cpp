#include "Applications/Device/DeviceServer.h"

namespace farview
{

void DeviceServer::confirmComputer() {}

void DeviceServer::refuseComputer() {}

bool DeviceServer::acceptDigits(const std::string&) { return false; }

void DeviceServer::forgetComputer(const std::string&) {}

} // namespace farview
