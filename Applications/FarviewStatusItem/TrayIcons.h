#pragma once

#include "Common/Rules/StatusIcon.h"

#include <QIcon>
#include <QString>

namespace farview
{

/// The state's icon in the desktop's theme, by a name that every theme has.
QString iconNameFor(StatusIcon icon);

/// The same icon; where no theme has it, one that is painted here.
QIcon iconFor(StatusIcon icon);

} // namespace farview
