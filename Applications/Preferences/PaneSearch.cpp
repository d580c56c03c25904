#include "Applications/Preferences/PaneSearch.h"

#include "Platform/SearchPaths.h"

#include <QDir>

QStringList findPanes(farview::SearchPaths& searchPaths)
{
    QStringList panes;
    const auto folders =
        searchPaths.directories(farview::SearchPathDirectory::preferencePanes,
                                farview::userDomain | farview::localDomain | farview::systemDomain);
    for (const auto& folder : folders) {
        const QDir directory(QString::fromStdString(folder));
        // Without a name filter: that would bring the pattern machinery into every start.
        for (const QString& name : directory.entryList(QDir::Dirs, QDir::Name)) {
            if (name.endsWith(u".prefPane"_qs))
                panes += QDir::cleanPath(directory.absoluteFilePath(name));
        }
    }
    return panes;
}

QString paneToOpen(const QString& asked, const QString& name, farview::SearchPaths& searchPaths)
{
    if (!asked.isEmpty())
        return QDir::cleanPath(QDir::current().absoluteFilePath(asked));
    for (const QString& pane : findPanes(searchPaths)) {
        if (pane.endsWith(u'/' + name))
            return pane;
    }
    return {};
}
