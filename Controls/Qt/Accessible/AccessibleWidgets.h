#pragma once

namespace farview
{

/// Tells assistive technology what our own widgets are: the switch, the pop-up, the map of
/// screens, the spinner, the table. Call it before the first of them is made; later calls do
/// nothing.
void installAccessibleWidgets();

} // namespace farview
