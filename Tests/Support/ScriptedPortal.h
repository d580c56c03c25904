#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariantMap>

#include <string>
#include <vector>

/// The desktop's settings portal on a bus of the test's own, as a test says.
class ScriptedPortal : public QDBusVirtualObject
{
    Q_OBJECT

public:
    explicit ScriptedPortal(const std::string& busAddress);
    ~ScriptedPortal() override;

    /// What is read from now on; nothing is told of it.
    void set(const char* area, const char* key, const QVariant& value);
    /// The same, and everybody is told.
    void change(const char* area, const char* key, const QVariant& value);
    /// Something that is no answer of a portal's.
    void setNonsense() { mNonsense = true; }
    /// Leaves questions open; `release` answers them.
    void hold() { mHolds = true; }
    void release();

    int questions() const { return mQuestions; }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QDBusMessage answerTo(const QDBusMessage& message) const;

    QDBusConnection mConnection;
    QMap<QString, QVariantMap> mValues;
    std::vector<QDBusMessage> mHeld;
    int mQuestions = 0;
    bool mNonsense = false;
    bool mHolds = false;
};
