#pragma once

#include "Controls/Qt/Switch/ImageFiles.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Switch/QLNOnOffView.h"
#include "Platform/Fake/FakeBundle.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QAnimationDriver>
#include <QDir>
#include <QTemporaryDir>

namespace farview::test
{

/// A clock for the toolkit's animations that stands still until the test moves it.
class HandDrivenClock final : public QAnimationDriver
{
public:
    HandDrivenClock() { install(); }
    ~HandDrivenClock() override { uninstall(); }

    qint64 elapsed() const override { return mNow; }
    void advanceBy(int milliseconds)
    {
        // What was just started begins some turns later, and at the time that it is now.
        for (int i = 0; i < 3; ++i) {
            turn();
            advanceAnimation();
        }
        mNow += milliseconds;
        advanceAnimation();
    }

private:
    qint64 mNow = 0;
};

/// A folder with pictures of one colour each, in both sizes, and the bundle that has them.
class SwitchPictures
{
public:
    SwitchPictures()
    {
        QDir().mkpath(path(""));
        save("OverlayMask", {100, 30}, QColor(0, 0, 0, 40));
        save("SliderWell", {100, 29}, QColor(60, 90, 30, 200));
        save("SliderKnob", {44, 34}, QColor(200, 30, 30));
        save("SliderKnobDown", {44, 34}, QColor(30, 30, 200));
    }

    QString path(const char* name) const
    {
        return mFolder.path() + u"/Contents/Resources/"_qs + QString::fromLatin1(name);
    }
    void save(const char* name, QSize size, QColor color)
    {
        bundle.addResource(name, "tiff");
        for (const int ratio : {1, 2}) {
            QImage image(size * ratio, QImage::Format_ARGB32);
            image.fill(color);
            const QString suffix = ratio == 2 ? u"@2x.tiff"_qs : u".tiff"_qs;
            ASSERT_TRUE(image.save(path(name) + suffix, "TIFF"));
        }
    }

private:
    QTemporaryDir mFolder;

public:
    FakeBundle bundle{mFolder.path().toStdString()};
    std::shared_ptr<ImageFiles> files = std::make_shared<ImageFiles>();
};

} // namespace farview::test
