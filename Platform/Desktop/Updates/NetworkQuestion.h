#pragma once

#include "Platform/Desktop/Bus/BusHandshake.h"
#include "Platform/Types/NetworkKind.h"

#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace farview
{

/// One question to NetworkManager, which is not started for it. A library's call to a bus that
/// stopped would hold this program, so the bus is checked first. Made with `new`; deletes itself
/// after the answer. Main thread only.
class NetworkQuestion : public QObject
{
    Q_OBJECT

public:
    NetworkQuestion(QString busAddress, QObject* parent);
    ~NetworkQuestion() override;

    /// Answers once, on a later turn, within some seconds: free of charge where nobody says
    /// otherwise.
    void ask(std::function<void(NetworkKind)> answer);

private:
    void askNetworkManager();
    void answerNow(NetworkKind kind);

    QString mAddress;
    QString mConnectionName;
    std::unique_ptr<BusCheck> mBusCheck;
    std::function<void(NetworkKind)> mAnswer;
};

/// What the properties say that NetworkManager has given (a map of texts and values).
NetworkKind networkKindIn(const QDBusMessage& reply);

} // namespace farview
