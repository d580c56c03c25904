#include "Controls/Window.h"

#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Change;
using farview::Object;
using farview::Selector;
using farview::View;
using farview::Window;
using testing::ElementsAre;

namespace
{

class Delegate final : public farview::Responder
{
public:
    bool respondsTo(Selector) const override { return true; }
    bool perform(Selector selector, Object* argument) override
    {
        const auto* window = dynamic_cast<Window*>(argument);
        called.push_back(std::string(selector.name) + (window->isVisible() ? " visible" : ""));
        return true;
    }

    std::vector<std::string> called;
};

TEST(Window, StandsBesideTheWindowOfAViewUntilItIsClosed)
{
    const auto view = std::make_shared<View>();
    const auto window = std::make_shared<Window>();
    EXPECT_FALSE(window->isVisible());
    window->orderFront(view);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->besideView(), view);
    window->close();
    EXPECT_FALSE(window->isVisible());
}

TEST(Window, TellsItsDelegateOnceBeforeItCloses)
{
    const auto delegate = std::make_shared<Delegate>();
    const auto window = std::make_shared<Window>();
    window->setDelegate(delegate);
    window->close();
    window->orderFront(nullptr);
    window->close();
    window->close();
    EXPECT_THAT(delegate->called, ElementsAre("windowWillClose: visible"));
}

TEST(Window, TellsEachChangeOnce)
{
    const auto window = std::make_shared<Window>();
    const ChangeCounter told(*window);
    window->orderFront(nullptr);
    window->orderFront(nullptr);
    window->close();
    EXPECT_THAT(told.changes, ElementsAre(Change::properties, Change::properties));
}

TEST(Window, KeepsNeitherItsDelegateNorTheViewAlive)
{
    auto view = std::make_shared<View>();
    auto delegate = std::make_shared<Delegate>();
    const auto window = std::make_shared<Window>();
    window->setDelegate(delegate);
    window->orderFront(view);
    view.reset();
    delegate.reset();
    EXPECT_EQ(window->besideView(), nullptr);
    EXPECT_EQ(window->delegate(), nullptr);
    window->close();
    EXPECT_FALSE(window->isVisible());
}

} // namespace
