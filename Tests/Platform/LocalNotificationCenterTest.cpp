#include "Platform/LocalNotificationCenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::LocalNotificationCenter;
using farview::Notification;
using testing::ElementsAre;

namespace
{

class Poster : public farview::Object
{
};

class Listener : public farview::Responder
{
public:
    bool respondsTo(farview::Selector selector) const override
    {
        return selector == farview::Selector{"heard:"};
    }
    bool perform(farview::Selector selector, farview::Object* argument) override
    {
        if (!respondsTo(selector))
            return false;
        names.push_back(dynamic_cast<Notification&>(*argument).name());
        return true;
    }

    std::vector<std::string> names;
};

class LocalNotificationCenterTest : public testing::Test
{
protected:
    LocalNotificationCenter center;
    const std::shared_ptr<int> observer = std::make_shared<int>();
};

TEST_F(LocalNotificationCenterTest, DeliversBeforeThePostReturns)
{
    std::string text;
    center.addObserver(
        observer, [&](const Notification& heard) { text = *heard.text("key"); }, "Name", nullptr);
    center.postNotificationName("Name", nullptr, {{"key", std::string("value")}});
    EXPECT_EQ(text, "value");
}

TEST_F(LocalNotificationCenterTest, TellsWhoPosted)
{
    const Poster poster;
    const Poster stranger;
    std::vector<const farview::Object*> posters;
    center.addObserver(
        observer, [&](const Notification& heard) { posters.push_back(heard.object()); }, "Name",
        &poster);
    center.postNotificationName("Name", &stranger, {});
    center.postNotificationName("Name", nullptr, {});
    center.postNotificationName("Name", &poster, {});
    EXPECT_THAT(posters, ElementsAre(&poster));
}

TEST_F(LocalNotificationCenterTest, PerformsAnOperationByNameWhileTheResponderLives)
{
    auto listener = std::make_shared<Listener>();
    const auto names = [&] { return listener->names; };
    center.addObserver(listener, farview::performing(listener, {"heard:"}), "Name", nullptr);
    center.postNotificationName("Name", nullptr, {});
    EXPECT_THAT(names(), ElementsAre("Name"));
    listener.reset();
    center.postNotificationName("Name", nullptr, {});
    EXPECT_EQ(center.registrationCount(), 0U);
}

TEST_F(LocalNotificationCenterTest, APostInsideAPostIsDeliveredFirst)
{
    std::vector<std::string> said;
    center.addObserver(
        observer,
        [&](const Notification&) {
            center.postNotificationName("Inner", nullptr, {});
            said.emplace_back("outer");
        },
        "Outer", nullptr);
    center.addObserver(
        observer, [&](const Notification&) { said.emplace_back("inner"); }, "Inner", nullptr);
    center.postNotificationName("Outer", nullptr, {});
    EXPECT_THAT(said, ElementsAre("inner", "outer"));
}

TEST(Notification, GivesATextOnlyWhereThereIsOne)
{
    const Notification notification(
        "Name", nullptr,
        {{"text", std::string("value")}, {"list", std::vector<std::string>{"value"}}});
    ASSERT_NE(notification.text("text"), nullptr);
    EXPECT_EQ(*notification.text("text"), "value");
    EXPECT_EQ(notification.text("list"), nullptr);
    EXPECT_EQ(notification.text("missing"), nullptr);
}

} // namespace
