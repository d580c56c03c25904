#include "Tests/Controls/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using farview::Change;
using farview::TextField;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

TEST(TextField, TellsWhatTheUserTypedApartFromWhatAProgramSet)
{
    const auto field = std::make_shared<TextField>();
    field->setEditable(true);
    const ChangeCounter told(*field);
    field->setStringValue("10.0.0.");
    field->userTyped("10.0.0.5");
    EXPECT_EQ(field->stringValue(), "10.0.0.5");
    EXPECT_THAT(told.changes, ElementsAre(Change::properties, Change::typedText));
}

TEST(TextField, TakesNoTypingWhileItIsDisabledOrNotEditable)
{
    const auto field = std::make_shared<TextField>();
    field->userTyped("label");
    EXPECT_EQ(field->stringValue(), "");
    field->setEditable(true);
    field->setEnabled(false);
    const ChangeCounter told(*field);
    field->userTyped("disabled");
    EXPECT_EQ(field->stringValue(), "");
    EXPECT_THAT(told.changes, IsEmpty());
}

TEST(TextField, TypingTheSameTextIsNoChange)
{
    const auto field = std::make_shared<TextField>();
    field->setEditable(true);
    field->userTyped("::1");
    const ChangeCounter told(*field);
    field->userTyped("::1");
    EXPECT_THAT(told.changes, IsEmpty());
}

TEST(TextField, AsksToBeSelectedEachTime)
{
    const auto field = std::make_shared<TextField>();
    const ChangeCounter told(*field);
    field->selectText();
    field->selectText();
    EXPECT_THAT(told.changes, ElementsAre(Change::textSelection, Change::textSelection));
}

TEST(TextField, RemembersWhatItsTextIs)
{
    const auto field = std::make_shared<TextField>();
    EXPECT_EQ(field->textRole(), TextField::Role::normal);
    const ChangeCounter told(*field);
    field->setTextRole(TextField::Role::error);
    EXPECT_EQ(field->textRole(), TextField::Role::error);
    EXPECT_THAT(told.changes, ElementsAre(Change::properties));
}

} // namespace
