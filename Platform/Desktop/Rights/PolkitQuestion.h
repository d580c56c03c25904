#pragma once

#include "Platform/Desktop/Bus/BusHandshake.h"
#include "Platform/Types/AuthorizationStatus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <memory>

namespace farview
{

/// One question to polkit about what this process may have done, on a connection of its own to the
/// system bus. Ending the object ends the connection, and polkit then takes back what it is asking
/// the user. Nothing waits for people, and nothing for a bus that stands still: an answer may take
/// for ever. Main thread only.
class PolkitQuestion : public QObject
{
    Q_OBJECT

public:
    using Answer = std::function<void(AuthorizationStatus)>;

    PolkitQuestion(const QString& busAddress, QObject* parent);
    ~PolkitQuestion() override;

    /// Asks the user when that is needed. One answer, on a later turn; so has `foresee`.
    void ask(const QString& action, Answer answer);
    /// The same without asking anybody; a question that the user could be asked is a success.
    void foresee(const QString& action, Answer answer);

private:
    using Reply = std::function<void(const QDBusMessage&)>;

    void foretell(AuthorizationStatus status);
    void reachBus(std::function<void()> reached);
    void check(const QString& action, quint32 flags, Reply reply);
    void call(const QString& member, const QVariantList& arguments, Reply reply);
    void send(const QDBusMessage& message, Reply reply);
    void findSession(const std::function<void(const QString&)>& found);
    void lookForAgentOf(const QVariant& subject, const std::function<void()>& none);
    void answerNow(AuthorizationStatus status);

    QString mBusAddress;
    QString mName;
    std::unique_ptr<BusCheck> mBusCheck;
    QDBusConnection mConnection;
    Answer mAnswer;
};

} // namespace farview
