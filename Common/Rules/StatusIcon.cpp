#include "Common/Rules/StatusIcon.h"

namespace farview
{

StatusIcon statusIcon(const StatusIconInputs& inputs)
{
    if (inputs.asked)
        return StatusIcon::question;
    if (!inputs.driverInstalled || inputs.currentState == 2)
        return StatusIcon::trouble;
    if (inputs.currentState == 0)
        return StatusIcon::off;
    if (inputs.connected)
        return StatusIcon::connected;
    return inputs.connectFailed ? StatusIcon::trouble : StatusIcon::on;
}

} // namespace farview
