#pragma once

#include <QString>
#include <QStringList>

namespace farview
{
class SearchPaths;
}

/// All preference panes of the user, of this computer and of the system, in this order.
QStringList findPanes(farview::SearchPaths& searchPaths);

/// The pane to open: the one asked for (a path, perhaps a relative one), else the first of that
/// name in the search paths, else an empty text.
QString paneToOpen(const QString& asked, const QString& name, farview::SearchPaths& searchPaths);
