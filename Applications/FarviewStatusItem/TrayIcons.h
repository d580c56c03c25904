#pragma once

#include "Common/Rules/StatusIcon.h"

#include <QIcon>
#include <QString>

namespace farview
{

/// The state's icon by its name in the desktop's theme. One colour, which the tray gives it.
QString iconNameFor(StatusIcon icon);

/// The folder of a theme that has these icons, in this program's bundle or in the build tree; empty
/// when there is none, for they are installed where every desktop looks, too.
QString iconThemePath();

/// The same icon as pictures, in colours that can be seen on light and on dark trays. Null when the
/// pictures are missing.
QIcon iconFor(StatusIcon icon);

} // namespace farview
