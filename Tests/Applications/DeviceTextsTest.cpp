#include "Applications/Device/DeviceTexts.h"

#include <gtest/gtest.h>

using namespace farview;

namespace
{

const std::string on = "%@: on";

TEST(DeviceTexts, AreInTheProgramInEachLanguage)
{
    for (const char* language : {"de", "es", "fr", "it", "pt-BR", "ja", "zh-Hans"})
        EXPECT_NE(DeviceTexts({language, "en"}).text(on).toStdString(), on) << language;
    EXPECT_EQ(DeviceTexts({"en"}).text(on).toStdString(), on);
}

TEST(DeviceTexts, AreInThePreferredLanguageThatThereIs)
{
    EXPECT_EQ(DeviceTexts({"xx", "de", "fr", "en"}).text(on), QString("%@: ein"));
    EXPECT_EQ(DeviceTexts({}).text(on).toStdString(), on);
}

TEST(DeviceTexts, HaveTheirPlacesFilledInInOrder)
{
    const DeviceTexts texts({"en"});
    EXPECT_EQ(texts.text(on, {"Touch"}), QString("Touch: on"));
    EXPECT_EQ(texts.text("%@ and %@", {"A", "B"}), QString("A and B"));
}

} // namespace
