#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

#include <functional>
#include <string>
#include <vector>

/// What answers for polkit on a bus of the test's own, as a test says.
class ScriptedPolkit : public QDBusVirtualObject
{
    Q_OBJECT

public:
    /// One question as it came.
    struct Question {
        QString member;
        QString subjectKind;
        QVariantMap subject;
        QString action; ///< of a check
        uint flags = 0; ///< of a check
    };

    explicit ScriptedPolkit(const std::string& busAddress);
    ~ScriptedPolkit() override;

    /// The answer to each check from now on.
    void setResult(bool isAuthorized, bool isChallenge, QMap<QString, QString> details = {});
    /// An error instead, with that name.
    void setError(const QString& name) { mError = name; }
    /// Something that is no answer of polkit's.
    void setNonsense() { mNonsense = true; }
    /// Leaves checks open.
    void hold() { mHolds = true; }
    /// What is said to somebody who wants an agent to go.
    void setAgentError(const QString& text) { mAgentError = text; }

    /// Lets a login service know that session as the user's display.
    void setSessionOfDisplay(const QString& identifier);

    const std::vector<Question>& questions() const { return mQuestions; }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QDBusMessage display(const QDBusMessage& message) const;
    QDBusMessage answerTo(const QDBusMessage& message) const;

    QDBusConnection mConnection;
    std::vector<Question> mQuestions;
    bool mIsAuthorized = false;
    bool mIsChallenge = false;
    QMap<QString, QString> mDetails;
    QString mError;
    QString mSession;
    QString mAgentError = QStringLiteral("No such agent registered");
    bool mNonsense = false;
    bool mHolds = false;
};
