#include "Common/Rules/PairingTexts.h"

#include <gtest/gtest.h>

namespace farview
{
namespace
{

using State = PairingReport::State;

std::string inEnglish(const std::string& text) { return text; }

std::string pairingText(State state, const std::string& device = "Living Room Tablet")
{
    return pairingSentence({state, "482913", device}, inEnglish);
}

TEST(PairingTexts, TheQuestionNamesTheDeviceAndTheDigits)
{
    EXPECT_EQ(pairingText(State::comparing), "Does Living Room Tablet show 482\u00A0913?");
    EXPECT_EQ(pairingText(State::confirmed), "Now confirm it at Living Room Tablet, too.");
}

TEST(PairingTexts, ANameThatLooksLikeAPlaceIsNotFilled)
{
    EXPECT_EQ(pairingText(State::comparing, "%2$@ <b>x"), "Does %2$@ <b>x show 482\u00A0913?");
}

TEST(PairingTexts, ATranslationMayHaveAnotherOrder)
{
    const auto reversed = [](const std::string&) { return std::string("%2$@: %1$@"); };
    EXPECT_EQ(pairingSentence({State::comparing, "482913", "Tablet"}, reversed),
              "482\u00A0913: Tablet");
}

TEST(PairingTexts, EachStateNamesTheDeviceAndSaysWhatToDo)
{
    for (int number = 1; number <= static_cast<int>(State::keyUnusable); ++number) {
        const auto state = static_cast<State>(number);
        EXPECT_NE(pairingText(state).find("Living Room Tablet"), std::string::npos) << number;
        EXPECT_TRUE(std::string(pairingTexts(state).remedy).ends_with('.')) << number;
    }
    EXPECT_EQ(pairingText(State::none), "");
}

TEST(PairingTexts, OnlyWhatCanBeAnsweredHasAnswers)
{
    const auto answers = [](State state) {
        const auto& texts = pairingTexts(state);
        return std::string(texts.yes) + "/" + texts.no;
    };
    EXPECT_EQ(answers(State::comparing), "Yes, These Digits/No");
    EXPECT_EQ(answers(State::confirmed), "/Cancel");
    EXPECT_EQ(answers(State::changed), "Forget the Old One/");
    for (const auto state :
         {State::none, State::unconfirmed, State::refusedThere, State::notCompared,
          State::tooManyTries, State::interfered, State::tooOld, State::keyUnusable})
        EXPECT_EQ(answers(state), "/") << static_cast<int>(state);
}

} // namespace
} // namespace farview
