#pragma once

#include "Platform/Types/UpdateStatus.h"

#include <QByteArray>

#include <optional>
#include <string>

namespace farview
{

/// What the update engine says in one line.
struct UpdateReport {
    UpdateStatus status; ///< the parts that this kind of report has
    std::string detail;  ///< of a failure, for the log
};

/// Reads one line, a JSON object. Nothing when it is none that is known, or lacks something, or
/// says what cannot be: then it is as if it had not come. Notes that are too long are cut.
std::optional<UpdateReport> readUpdateReport(const QByteArray& line);

} // namespace farview
