#pragma once

#include "Controls/Qt/Switch/ImageFiles.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Switch/QLNOnOffView.h"
#include "Platform/Fake/FakeBundle.h"
#include "Tests/Controls/Qt/QtTestSupport.h"

#include <QDir>
#include <QTemporaryDir>

namespace farview::test
{

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
