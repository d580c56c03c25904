#pragma once

#include "Tests/Support/WaitUntil.h"
#include "Tests/Window/PanelFixture.h"

#include <QProcess>
#include <QTabWidget>

namespace farview::test
{

/// The panel on a real display, with a real mouse and a real keyboard.
class RealPanel : public PanelFixture
{
protected:
    /// The panel at the front with one of its tabs.
    void open(bool on, int tab)
    {
        load();
        if (on)
            fake.preferences.setAppValue("currentState", 1, "com.quillon.Farview");
        show();
        find<QTabWidget>("tabView")->setCurrentIndex(tab);
    }
    void bringToFront()
    {
        view->activateWindow();
        ASSERT_TRUE(waitUntil([&] { return view->isActiveWindow(); }));
        runLoopFor(std::chrono::milliseconds(50));
    }
    static void xdotool(const QStringList& words)
    {
        QProcess process;
        process.start(u"xdotool"_qs, words);
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0);
    }
    static void click(const QPoint& place, int button = 1)
    {
        xdotool({u"mousemove"_qs, QString::number(place.x()), QString::number(place.y()),
                 u"click"_qs, QString::number(button)});
    }
    static void click(QWidget* widget) { click(widget->mapToGlobal(widget->rect().center())); }
    static void key(const char* name) { xdotool({u"key"_qs, QString::fromLatin1(name)}); }
};

} // namespace farview::test
