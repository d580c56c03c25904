#include "Platform/Desktop/Notifications/NotificationMessage.h"

#include <QDBusArgument>
#include <QVariant>

namespace farview::NotificationMessage
{
namespace
{

const QString signature = QStringLiteral("ssa{ss}us");

QString text(const std::string& utf8) { return QString::fromStdString(utf8); }

QVariant encodedUserInfo(const DistributedNotificationCenter::TextUserInfo& userInfo)
{
    QDBusArgument map;
    map.beginMap(QMetaType(QMetaType::QString), QMetaType(QMetaType::QString));
    for (const auto& [key, value] : userInfo) {
        map.beginMapEntry();
        map << text(key) << text(value);
        map.endMapEntry();
    }
    map.endMap();
    return QVariant::fromValue(map);
}

/// Stops reading as soon as the limit is passed. False when it was.
bool decodeUserInfo(const QDBusArgument& map, std::size_t& size,
                    DistributedNotificationCenter::TextUserInfo& userInfo)
{
    map.beginMap();
    while (!map.atEnd() && size <= largestNotification) {
        QString key;
        QString value;
        map.beginMapEntry();
        map >> key >> value;
        map.endMapEntry();
        size += static_cast<std::size_t>(key.size()) + static_cast<std::size_t>(value.size());
        userInfo.insert_or_assign(key.toStdString(), value.toStdString());
    }
    map.endMap();
    return size <= largestNotification;
}

} // namespace

QString path() { return QStringLiteral("/com/quillon/DistributedNotificationCenter"); }
QString interface() { return QStringLiteral("com.quillon.DistributedNotificationCenter"); }
QString member() { return QStringLiteral("Posted"); }

QDBusMessage encoded(const PostedNotification& posted)
{
    auto message = QDBusMessage::createSignal(path(), interface(), member());
    message << text(posted.name) << text(posted.object) << encodedUserInfo(posted.userInfo)
            << posted.options << text(posted.session);
    return message;
}

std::optional<PostedNotification> decoded(const QDBusMessage& message, std::string& reason)
{
    if (message.signature() != signature) {
        reason = "its signature is \"" + message.signature().left(80).toStdString() + "\"";
        return std::nullopt;
    }
    const auto arguments = message.arguments();
    PostedNotification posted{arguments.at(0).toString().toStdString(),
                              arguments.at(1).toString().toStdString(),
                              {},
                              arguments.at(3).toUInt(),
                              arguments.at(4).toString().toStdString()};
    std::size_t total = size(posted);
    const auto map = arguments.at(2).value<QDBusArgument>();
    if (total > largestNotification || !decodeUserInfo(map, total, posted.userInfo)) {
        reason = "it is too large";
        return std::nullopt;
    }
    return posted;
}

std::size_t size(const PostedNotification& posted)
{
    std::size_t total = posted.name.size() + posted.object.size() + posted.session.size();
    for (const auto& [key, value] : posted.userInfo)
        total += key.size() + value.size();
    return total;
}

} // namespace farview::NotificationMessage
