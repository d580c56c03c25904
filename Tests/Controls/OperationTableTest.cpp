#include "Controls/OperationTable.h"

#include <gtest/gtest.h>

#include <array>

using farview::findOperation;
using farview::Notification;
using farview::Object;
using farview::Operation;

namespace
{

class Receiver
{
public:
    void act(Object* sender) { lastSender = sender; }
    void heard(const Notification& notification) { lastName = notification.name(); }

    Object* lastSender = nullptr;
    std::string lastName;
};

constexpr std::array<Operation<Receiver>, 2> table{
    farview::action<&Receiver::act, Receiver>("act:"),
    farview::observer<&Receiver::heard, Receiver>("heard:"),
};

const Operation<Receiver>* find(std::string_view name)
{
    return findOperation(std::span<const Operation<Receiver>>(table), {name});
}

TEST(OperationTable, CallsAnActionWithItsSender)
{
    Receiver receiver;
    Object sender;
    find("act:")->call(receiver, &sender);
    EXPECT_EQ(receiver.lastSender, &sender);
}

TEST(OperationTable, CallsAnObserverWithItsNotification)
{
    Receiver receiver;
    Notification notification("Name", nullptr, {});
    find("heard:")->call(receiver, &notification);
    EXPECT_EQ(receiver.lastName, "Name");
}

TEST(OperationTable, AnObserverIgnoresWhatIsNoNotification)
{
    Receiver receiver;
    Object other;
    find("heard:")->call(receiver, &other);
    find("heard:")->call(receiver, nullptr);
    EXPECT_EQ(receiver.lastName, "");
}

TEST(OperationTable, KnowsOnlyItsOwnNamesInFull)
{
    EXPECT_EQ(find("act"), nullptr);
    EXPECT_EQ(find(""), nullptr);
}

} // namespace
