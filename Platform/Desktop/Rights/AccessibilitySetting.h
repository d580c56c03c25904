#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace farview
{

/// The lasting setting for accessibility of the desktops that share GNOME's, reached through their
/// settings tool, `gsettings`. Never blocks; what is asked for ends unanswered with this object.
class AccessibilitySetting : public QObject
{
    Q_OBJECT

public:
    using Answer = std::function<void(bool)>;

    /// Whether this desktop has the setting and lets its user change it.
    void isThere(Answer answer);
    /// Changes it. The answer tells whether another program sees the change: the tool itself
    /// reports success also when nothing was stored.
    void store(bool on, Answer answer);

private:
    using Output = std::optional<QString>;

    /// `done` gets what the tool printed; nothing when it failed, is missing or took too long.
    void run(const QStringList& words, std::function<void(const Output&)> done);
};

} // namespace farview
