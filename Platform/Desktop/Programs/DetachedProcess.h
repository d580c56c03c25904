#pragma once

#include <QString>
#include <QStringList>

namespace farview
{

/// Starts a program that is on its own from then on: a session of its own, in "/", nothing to read,
/// what it prints thrown away, errors where ours go, and without our window's activation token.
/// Returns its process identifier, or 0 when it could not be started.
qint64 startDetached(const QString& program, const QStringList& arguments);

/// Whether `startDetached` started this process: one of our programs did it, and not a person or a
/// session by hand.
bool wasStartedDetached();

/// Whether a process of this user runs that was started as `startDetached` starts `program`.
bool isRunningDetached(const QString& program);

} // namespace farview
