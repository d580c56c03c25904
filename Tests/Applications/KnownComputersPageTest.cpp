#include "Applications/Device/KnownComputersPage.h"

#include <QApplication>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace farview;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

constexpr Date november{1'700'000'000};

class KnownComputersPageTest : public testing::Test
{
protected:
    KnownComputersPageTest()
    {
        page.resize(420, 400);
        page.show();
    }
    QLabel& label(const char* name) { return *page.findChild<QLabel*>(QLatin1String(name)); }
    QPushButton& back() { return *page.findChild<QPushButton*>(QStringLiteral("knownBack")); }
    QList<QPushButton*> removers()
    {
        return list()->findChildren<QPushButton*>(QStringLiteral("knownRemove"));
    }
    QStringList rows()
    {
        QStringList all;
        for (const auto* each : list()->findChildren<QLabel*>(QStringLiteral("knownComputer")))
            all += each->text();
        return all;
    }
    QWidget* list() { return page.findChild<QScrollArea*>()->widget(); }

    const PairedPeer desk{std::string("0a1b2c3d") + std::string(56, '7'),
                          "192.0.2.9",
                          november,
                          {november.secondsSince1970 + 86400}};
    const PairedPeer lab{std::string(64, 'f'), "2001:db8::2", november, november};
    std::vector<std::string> forgotten;
    int left = 0;
    DeviceTexts texts{{"en"}};
    KnownComputersPage page{
        texts, {[this](const auto& key) { forgotten.push_back(key); }, [this] { ++left; }}};
};

TEST_F(KnownComputersPageTest, SaysThatThereAreNone)
{
    EXPECT_THAT(label("knownNobody").text().toStdString(), HasSubstr("None yet. Choose this"));
    page.showComputers({desk});
    EXPECT_FALSE(list()->findChild<QLabel*>(QStringLiteral("knownNobody")));
    page.showComputers({});
    EXPECT_TRUE(list()->findChild<QLabel*>(QStringLiteral("knownNobody")));
}

TEST_F(KnownComputersPageTest, TellsWhereSinceWhenAndTheKeyOfEach)
{
    page.showComputers({desk, lab});
    ASSERT_EQ(rows().size(), 2);
    const auto text = rows().front().toStdString();
    EXPECT_THAT(text, HasSubstr("192.0.2.9\nKey: \u20660a1b 2c3d\u2069\nConfirmed on "));
    const auto date = [](Date moment) {
        const auto local =
            QDateTime::fromSecsSinceEpoch(static_cast<qint64>(moment.secondsSince1970));
        return QLocale().toString(local.date(), QLocale::ShortFormat).toStdString();
    };
    EXPECT_THAT(text, HasSubstr("Confirmed on " + date(november) + "\nLast used on " +
                                date(desk.lastUsed)));
    EXPECT_NE(date(november), date(desk.lastUsed));
    EXPECT_THAT(rows().back().toStdString(), HasSubstr("2001:db8::2\n"));
}

TEST_F(KnownComputersPageTest, LeavesOutADateThatNobodyKnows)
{
    auto used = desk;
    used.since = {};
    auto neither = lab;
    neither.since = neither.lastUsed = {300};
    page.showComputers({used, neither});
    EXPECT_THAT(rows().front().toStdString(), HasSubstr("\u2069\nLast used on "));
    EXPECT_EQ(rows().back().toStdString(), "2001:db8::2\nKey: \u2066ffff ffff\u2069");
}

TEST_F(KnownComputersPageTest, TakesOneOffTheListAndSaysWhatThatMeans)
{
    page.showComputers({desk, lab});
    EXPECT_FALSE(label("knownNote").isVisible());
    removers().back()->click();
    EXPECT_THAT(forgotten, ElementsAre(lab.key));
    EXPECT_TRUE(label("knownNote").isVisible());
    EXPECT_THAT(label("knownNote").text().toStdString(),
                HasSubstr("The computer at 2001:db8::2 was removed."));
    page.hide();
    page.show();
    EXPECT_FALSE(label("knownNote").isVisible()) << "it is no news any more";
}

TEST_F(KnownComputersPageTest, TheKeyboardStaysWhereItWasWhenARowGoes)
{
    page.showComputers({desk, lab});
    removers().front()->setFocus();
    page.showComputers({lab});
    EXPECT_EQ(page.focusWidget(), removers().front());
    page.showComputers({});
    EXPECT_EQ(page.focusWidget(), &back());
}

TEST_F(KnownComputersPageTest, ABlindReturnRemovesNothing)
{
    page.showComputers({desk});
    ASSERT_EQ(page.focusWidget(), &back());
    QTest::keyClick(page.focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(forgotten.empty());
    EXPECT_EQ(left, 1);
}

TEST_F(KnownComputersPageTest, EachButtonTellsAssistiveTechnologyWhatItRemoves)
{
    page.showComputers({desk, lab});
    for (int row = 0; row < 2; ++row)
        EXPECT_EQ(removers()[row]->accessibleDescription(), rows()[row]);
}

TEST_F(KnownComputersPageTest, ALongListIsScrolled)
{
    std::vector<PairedPeer> many(PairedPeers::mostPeers, desk);
    page.showComputers(many);
    EXPECT_EQ(removers().size(), static_cast<qsizetype>(PairedPeers::mostPeers));
    QApplication::processEvents();
    EXPECT_EQ(page.size(), QSize(420, 400));
    EXPECT_GT(list()->height(), 400);
    EXPECT_LE(list()->width(), 420) << "never to the side";
}

} // namespace
