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

TEST(LocalNotificationCenter, DeliversBeforeThePostReturns)
{
    LocalNotificationCenter center;
    const auto observer = std::make_shared<int>();
    std::string text;
    center.addObserver(
        observer, [&](const Notification& heard) { text = *heard.text("key"); }, "Name", nullptr);
    center.postNotificationName("Name", nullptr, {{"key", std::string("value")}});
    EXPECT_EQ(text, "value");
}

TEST(LocalNotificationCenter, TellsWhoPosted)
{
    LocalNotificationCenter center;
    const auto observer = std::make_shared<int>();
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

TEST(LocalNotificationCenter, PerformsAnOperationByNameWhileTheResponderLives)
{
    LocalNotificationCenter center;
    auto listener = std::make_shared<Listener>();
    const auto names = [&] { return listener->names; };
    center.addObserver(listener, farview::performing(listener, {"heard:"}), "Name", nullptr);
    center.postNotificationName("Name", nullptr, {});
    EXPECT_THAT(names(), ElementsAre("Name"));
    listener.reset();
    center.postNotificationName("Name", nullptr, {});
    EXPECT_EQ(center.registrationCount(), 0U);
}

TEST(LocalNotificationCenter, APostInsideAPostIsDeliveredFirst)
{
    LocalNotificationCenter center;
    const auto observer = std::make_shared<int>();
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

TEST(LocalNotificationCenter, RemovesByNameAndObject)
{
    LocalNotificationCenter center;
    const auto observer = std::make_shared<int>();
    const Poster poster;
    const auto ignore = [](const Notification&) {};
    center.addObserver(observer, ignore, "Name", &poster);
    center.addObserver(observer, ignore, "Name", nullptr);
    center.removeObserver(observer, "Name", &poster);
    EXPECT_EQ(center.registrationCount(), 1U);
    center.removeObserver(observer, "Name", nullptr);
    EXPECT_EQ(center.registrationCount(), 0U);
    center.addObserver(observer, ignore, "Name", nullptr);
    center.removeObserver(observer);
    EXPECT_EQ(center.registrationCount(), 0U);
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
