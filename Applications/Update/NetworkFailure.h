#pragma once

#include "Applications/Update/UpdateFailure.h"

#include <QNetworkReply>

namespace farview
{

/// What a transfer that ended with that error is to the user.
UpdateFailure networkFailure(QNetworkReply::NetworkError error, const QString& text);

} // namespace farview
