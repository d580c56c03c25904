#pragma once

#include <QDBusConnection>
#include <QString>

#include <string>
#include <vector>

/// Announces services through a test's daemon, as any other program on that host would. Ends with
/// the object.
class TestPublisher
{
public:
    explicit TestPublisher(const std::string& busAddress);
    ~TestPublisher();
    TestPublisher(const TestPublisher&) = delete;
    TestPublisher& operator=(const TestPublisher&) = delete;

    struct Service {
        std::string name;
        std::vector<std::string> record = {"ConnState=NotConnected"};
        unsigned short port = 6001;
        std::string host = {}; ///< empty: the daemon's own
    };

    /// Announces; false (and `lastError()`) when the daemon refuses.
    bool publish(const Service& service);
    void update(const std::string& name, const std::vector<std::string>& record);
    /// Takes it back, with a goodbye.
    void withdraw(const std::string& name);
    const std::string& lastError() const { return mLastError; }

private:
    struct Group {
        std::string name;
        QString path;
    };

    QDBusMessage call(const QString& path, const QString& member, const QVariantList& arguments);

    QString mConnectionName;
    QDBusConnection mConnection;
    std::vector<Group> mGroups;
    std::string mLastError;
};
