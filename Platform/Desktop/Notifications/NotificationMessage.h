#pragma once

#include "Platform/Desktop/Notifications/PostedNotification.h"

#include <QDBusMessage>
#include <QString>

#include <optional>
#include <string>

namespace farview
{

/// The D-Bus form of a notification: the signal Posted(s name, s object, a{ss} userInfo, u options,
/// s session).
namespace NotificationMessage
{

QString path();
QString interface();
QString member();

QDBusMessage encoded(const PostedNotification& posted);
/// Nothing when the message is malformed or too large; `reason` then says why.
std::optional<PostedNotification> decoded(const QDBusMessage& message, std::string& reason);
/// The bytes of all texts.
std::size_t size(const PostedNotification& posted);

} // namespace NotificationMessage

} // namespace farview
