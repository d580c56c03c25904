#include "Platform/Desktop/Notifications/NotificationMessage.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

TEST(NotificationMessage, IsTheSignalThatEveryProgramAgreesOn)
{
    const PostedNotification posted{"name", "object", {{"key", "value"}}, 3, "session"};
    const auto message = NotificationMessage::encoded(posted);
    EXPECT_EQ(message.type(), QDBusMessage::SignalMessage);
    EXPECT_EQ(message.path(), "/com/quillon/DistributedNotificationCenter");
    EXPECT_EQ(message.interface(), "com.quillon.DistributedNotificationCenter");
    EXPECT_EQ(message.member(), "Posted");
    ASSERT_EQ(message.arguments().size(), 5);
    EXPECT_EQ(message.arguments().at(0).toString(), "name");
    EXPECT_EQ(message.arguments().at(1).toString(), "object");
    EXPECT_EQ(message.arguments().at(3).typeId(), QMetaType::UInt);
    EXPECT_EQ(message.arguments().at(3).toUInt(), 3u);
    EXPECT_EQ(message.arguments().at(4).toString(), "session");
}

TEST(NotificationMessage, ItsSizeCountsEveryText)
{
    EXPECT_EQ(NotificationMessage::size({"12", "345", {{"6", "78"}, {"9", ""}}, 3, "01"}), 11u);
    EXPECT_EQ(NotificationMessage::size({}), 0u);
}

TEST(NotificationMessage, WithoutASignatureItIsMalformed)
{
    std::string reason;
    EXPECT_EQ(NotificationMessage::decoded(QDBusMessage(), reason), std::nullopt);
    EXPECT_FALSE(reason.empty());
}

} // namespace
} // namespace farview
