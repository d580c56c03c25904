#include "Applications/Preferences/HostWindow.h"
#include "Controls/Qt/Forms/InterfaceFile.h"
#include "Platform/Fake/FakeAccessibility.h"
#include "Platform/Fake/FakeAccessibilitySwitch.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Source/AccessibilityPane.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Window/EveryLanguage.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace farview::test
{
namespace
{

using Lifetime = AccessibilitySwitch::Lifetime;
using Problem = AccessibilitySwitch::Problem;

/// The small pane as people see it, on a scripted desktop.
class AccessibilityPaneWindow : public testing::TestWithParam<const char*>
{
protected:
    ~AccessibilityPaneWindow() override { QApplication::setFont(mFont); }

    void load(const char* language)
    {
        const ScopedEnvironment lang("LANG", "en_US.UTF-8");
        const ScopedEnvironment languages("LANGUAGE", language);
        mBundle =
            PosixBundles(EnvironmentUse::honoured, mLog).bundleWithPath(FARVIEW_ACCESS_BUNDLE);
        ASSERT_NE(mBundle, nullptr);
        pane = std::make_shared<AccessibilityPane>(accessibility, desktop, mBundle);
        std::string error;
        view = InterfaceFile(*mBundle, "UniversalAccessPref").load(pane, error);
        ASSERT_NE(view, nullptr) << error;
        view->resize(HostWindow::firstSize(*view));
    }
    void showWith(AccessibilitySwitch::State state)
    {
        desktop.setState(state);
        pane->willSelect();
        desktop.deliver();
        view->show();
        QCoreApplication::processEvents();
    }
    QCheckBox* box() const { return view->findChild<QCheckBox*>("accessibilityCheckbox"); }
    void expectNothingIsCut() const
    {
        for (const auto* label : view->findChildren<QLabel*>())
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->objectName().toStdString();
        EXPECT_TRUE(view->rect().contains(view->childrenRect()));
    }

    FakeAccessibility accessibility;
    FakeAccessibilitySwitch desktop;
    std::shared_ptr<AccessibilityPane> pane;
    std::unique_ptr<QWidget> view;

private:
    StandardErrorLog mLog{"panel_test"};
    std::shared_ptr<Bundle> mBundle;
    QFont mFont = QApplication::font();
};

INSTANTIATE_TEST_SUITE_P(Languages, AccessibilityPaneWindow, everyLanguage, nameOfLanguage);

TEST_P(AccessibilityPaneWindow, NothingIsCut)
{
    load(GetParam());
    accessibility.setEnabled(true);
    showWith({false, Problem::none, Lifetime::kept});
    expectNothingIsCut();
    showWith({std::nullopt, Problem::noService, Lifetime::session});
    expectNothingIsCut();
    EXPECT_FALSE(box()->isEnabled());
}

TEST_P(AccessibilityPaneWindow, NothingIsCutInLargeType)
{
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    QApplication::setFont(font);
    load(GetParam());
    showWith({true, Problem::none, Lifetime::session});
    view->resize(HostWindow::firstSize(*view));
    QCoreApplication::processEvents();
    expectNothingIsCut();
}

TEST_P(AccessibilityPaneWindow, EveryTextIsTranslated)
{
    load(GetParam());
    const bool isEnglish = std::string(GetParam()) == "en";
    EXPECT_EQ(box()->text() == u"Enable access for assistive &devices", isEnglish);
    for (const auto problem : {Problem::noService, Problem::noAnswer, Problem::notTaken}) {
        showWith({std::nullopt, problem, Lifetime::session});
        const QString text = view->findChild<QLabel*>("problemLabel")->text();
        EXPECT_FALSE(text.isEmpty());
        EXPECT_EQ(text.startsWith(u"Th"), isEnglish) << text.toStdString();
    }
    for (const auto lifetime : {Lifetime::session, Lifetime::kept}) {
        showWith({true, Problem::none, lifetime});
        EXPECT_EQ(view->findChild<QLabel*>("lifetimeLabel")->text().startsWith(u"Your"), isEnglish);
        EXPECT_EQ(view->findChild<QLabel*>("windowsLabel")->text().contains(u"may"), isEnglish);
    }
}

TEST_F(AccessibilityPaneWindow, TheSpaceKeyThrowsTheSwitch)
{
    load("en");
    showWith({false, Problem::none, Lifetime::session});
    box()->setFocus();
    QTest::keyClick(box(), Qt::Key_Space);
    EXPECT_EQ(desktop.requests(), std::vector<bool>{true});
    EXPECT_FALSE(box()->isEnabled());
    desktop.deliver();
    EXPECT_TRUE(box()->isEnabled());
    EXPECT_TRUE(box()->isChecked());
}

} // namespace
} // namespace farview::test
