#pragma once

#include <QStringList>
#include <QWidget>

namespace farview::test
{

/// What keeps people from reading what stands in a window: a text with less room than it needs,
/// controls that lie over one another, and what reaches out of what holds it. One sentence each.
/// A page that scrolls up and down may be higher than its window.
///
/// `foreign`: names that others choose, of any length; these may end in an ellipsis.
QStringList textFaults(const QWidget& window, const QStringList& foreign = {});

} // namespace farview::test
