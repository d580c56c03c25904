#include "Controls/Qt/Forms/SheetWidget.h"
#include "Platform/Types/UpdateProblem.h"
#include "Tests/Window/EveryLanguage.h"
#include "Tests/Window/PanelFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabWidget>
#include <QtTest/QTest>

namespace farview::test
{
namespace
{

/// The sheet as people see it, opened with the real button.
class SoftwareUpdateSheet : public PanelFixture
{
protected:
    void open(const char* language = "en")
    {
        load(language);
        updater = fake.updaters.fakeForBundle(boundPath());
        find<QTabWidget>("tabView")->setCurrentIndex(1);
        show();
        find<QTabWidget>("tabView")->setCurrentIndex(1);
        checkNow()->click();
        settle();
        ASSERT_NE(sheet(), nullptr);
    }
    /// The scripted machine knows no bundle of ours.
    static std::string boundPath() { return {}; }
    QPushButton* checkNow() const { return find<QPushButton>("checkNowForUpdateButton"); }
    SheetWidget* sheet() const
    {
        auto* widget = view->window()->findChild<SheetWidget*>(QStringLiteral("updatePanel"));
        return widget && widget->isVisible() ? widget : nullptr;
    }
    QPushButton* button(const char* name) const
    {
        return sheet()->findChild<QPushButton*>(QString::fromLatin1(name));
    }
    QLabel* label(const char* name) const
    {
        return sheet()->findChild<QLabel*>(QString::fromLatin1(name));
    }
    QScrollArea* notes() const { return sheet()->findChild<QScrollArea*>(u"notesArea"_qs); }
    void offer(const std::string& text = "Faster.\nSmaller.")
    {
        updater->find("1.1", text);
        settle();
    }
    void expectNothingIsCut(const char* where)
    {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        for (const auto* each : sheet()->findChildren<QLabel*>()) {
            if (each->isVisible()) {
                EXPECT_GE(each->height(), each->heightForWidth(each->width()))
                    << where << ": " << each->objectName().toStdString();
            }
        }
        for (const auto* each : sheet()->findChildren<QPushButton*>()) {
            if (each->isVisible()) {
                EXPECT_GE(each->width(), each->minimumSizeHint().width())
                    << where << ": " << each->text().toStdString();
            }
        }
        EXPECT_LE(sheet()->minimumSizeHint().width(), 600) << where;
    }

    std::shared_ptr<FakeUpdater> updater;
};

TEST_F(SoftwareUpdateSheet, HangsOnThePanelAndEscapeGivesUp)
{
    open();
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(label("headlineText")->text(), u"Looking for updates…"_qs);
    EXPECT_FALSE(button("firstButton")->isVisible());
    EXPECT_FALSE(notes()->isVisible());
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(updater->calls().back(), "cancel");
}

TEST_F(SoftwareUpdateSheet, ReturnIsTheAnswerThatGoesOn)
{
    open();
    offer();
    QTest::keyClick(sheet(), Qt::Key_Return);
    EXPECT_EQ(updater->calls().back(), "download");
    updater->receive(400'000, 900'000);
    EXPECT_EQ(label("detailText")->text(), u"400 kB / 900 kB"_qs);
    updater->verify();
    updater->getReady();
    QTest::keyClick(sheet(), Qt::Key_Escape);
    ASSERT_NE(sheet(), nullptr) << "an installation cannot be left";
    updater->finishInstallation();
    QTest::keyClick(sheet(), Qt::Key_Return);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(fake.application->reopenings(), 1);
}

TEST_F(SoftwareUpdateSheet, EscapeAndTheCloseButtonAreLater)
{
    open();
    offer();
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(checkNow()->text(), u"Show Update…"_qs);
    checkNow()->click();
    ASSERT_NE(sheet(), nullptr);
    sheet()->close();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(updater->calls(), std::vector<std::string>{"check"});
}

TEST_F(SoftwareUpdateSheet, EscapeClosesAlsoWhereOKIsTheOnlyButton)
{
    open();
    const QString usual = checkNow()->text();
    updater->findNothing();
    EXPECT_FALSE(button("secondButton")->isVisible());
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(checkNow()->text(), usual);
    EXPECT_TRUE(usual.contains(u'&')) << "its shortcut is back";
}

TEST_F(SoftwareUpdateSheet, EverythingInItIsReachedByTheKeyboard)
{
    open();
    offer();
    QSet<QString> reached;
    for (int step = 0; step < 6; ++step) {
        QTest::keyClick(sheet()->focusWidget() ? sheet()->focusWidget() : sheet(), Qt::Key_Tab);
        if (const auto* focus = sheet()->focusWidget())
            reached.insert(focus->objectName());
    }
    EXPECT_EQ(reached, (QSet<QString>{u"firstButton"_qs, u"secondButton"_qs, u"notesArea"_qs}));
}

TEST_F(SoftwareUpdateSheet, LongNotesScrollAndArePlainText)
{
    open();
    std::string text = "<b>bold</b> &amp; <img src=x>\n";
    for (int line = 0; line < 400; ++line)
        text += "Another line of what is new.\n";
    offer(text);
    EXPECT_EQ(label("notesText")->textFormat(), Qt::PlainText);
    EXPECT_TRUE(label("notesText")->text().startsWith(u"<b>bold</b> &amp;"_qs));
    EXPECT_LT(sheet()->height(), 480);
    ASSERT_GT(notes()->verticalScrollBar()->maximum(), 0);
    notes()->setFocus();
    QTest::keyClick(notes(), Qt::Key_PageDown);
    EXPECT_GT(notes()->verticalScrollBar()->value(), 0);
}

TEST_F(SoftwareUpdateSheet, APaneThatGoesTakesItsSheetAlong)
{
    open();
    const QPointer<QWidget> widget = sheet();
    pane.reset();
    EXPECT_TRUE(widget.isNull());
}

TEST_F(SoftwareUpdateSheet, WhatCanBeUsedHasANameForAssistiveTechnology)
{
    open();
    offer();
    for (QWidget* each :
         {static_cast<QWidget*>(button("firstButton")),
          static_cast<QWidget*>(button("secondButton")), static_cast<QWidget*>(notes())}) {
        const auto* accessible = QAccessible::queryAccessibleInterface(each);
        ASSERT_NE(accessible, nullptr);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
            << each->objectName().toStdString();
    }
}

class SoftwareUpdateInEveryLanguage : public SoftwareUpdateSheet,
                                      public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(All, SoftwareUpdateInEveryLanguage, everyLanguage, nameOfLanguage);

TEST_P(SoftwareUpdateInEveryLanguage, NothingIsCutInLargeType)
{
    useLargeFont();
    open(GetParam());
    expectNothingIsCut("looking");
    offer();
    expectNothingIsCut("found");
    for (const auto& each : updateProblemWords) {
        updater->checkForUpdates();
        updater->fail(each.problem);
        ASSERT_NE(sheet(), nullptr) << each.word;
        expectNothingIsCut(std::string(each.word).c_str());
    }
}

TEST_P(SoftwareUpdateInEveryLanguage, TheLineInTheSettingsIsNotCutInALowWindow)
{
    load(GetParam());
    updater = fake.updaters.fakeForBundle(boundPath());
    show();
    find<QTabWidget>("tabView")->setCurrentIndex(1);
    view->resize(640, 480);
    const auto* line = find<QLabel>("updateStatusLabel");
    for (const auto& each : updateProblemWords) {
        updater->checkForUpdates();
        updater->fail(each.problem);
        settle();
        QCoreApplication::processEvents();
        EXPECT_GE(line->height(), line->heightForWidth(line->width()))
            << each.word << ": " << line->text().toStdString();
    }
}

} // namespace
} // namespace farview::test
