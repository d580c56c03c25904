#include "Controls/Qt/Forms/FormLoader.h"

#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/Forms/PageScroller.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/ImageFiles.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Qt/Table/TableWidget.h"
#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/LabelTint.h"
#include "Platform/Bundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QPainter>
#include <QTranslator>

namespace farview
{
namespace
{

constexpr double cornerRadius = 8.0;
constexpr double edgeOpacity = 0.2; // of the text's colour

/// A calm ground with round corners around what belongs together and matters most.
class Card final : public QWidget
{
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor edge = palette().color(QPalette::WindowText);
        edge.setAlphaF(edgeOpacity);
        painter.setPen(edge);
        painter.setBrush(palette().color(QPalette::Base));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                                cornerRadius);
    }
};

class Loader final : public QUiLoader
{
public:
    explicit Loader(const Bundle& bundle) : mBundle(bundle) {}

    QWidget* createWidget(const QString& className, QWidget* parent, const QString& name) override
    {
        QWidget* widget = ownWidget(className, parent);
        if (!widget)
            return QUiLoader::createWidget(className, parent, name);
        widget->setObjectName(name);
        return widget;
    }

private:
    QWidget* ownWidget(const QString& className, QWidget* parent) const
    {
        if (className == u"farview::Card")
            return new Card(parent);
        if (className == u"farview::ChiseledTextWidget")
            return new ChiseledTextWidget(parent);
        if (className == u"farview::FrameContainer")
            return new FrameContainer(parent);
        if (className == u"farview::PageScroller")
            return new PageScroller(parent);
        if (className == u"farview::PopUpWidget")
            return new PopUpWidget(parent);
        if (className == u"farview::SheetWidget")
            return new SheetWidget(parent);
        if (className == u"farview::SpinnerWidget")
            return new SpinnerWidget(parent);
        if (className == u"farview::SwitchWidget")
            return makeSwitch(parent);
        if (className == u"farview::TableWidget")
            return new TableWidget(parent);
        return nullptr;
    }
    QWidget* makeSwitch(QWidget* parent) const
    {
        auto* widget = new SwitchWidget(parent);
        widget->setImageSource({&mBundle, std::make_shared<ImageFiles>()});
        return widget;
    }

    const Bundle& mBundle;
};

/// Answers with the bundle's texts. Installed only while a form is read.
class BundleTranslator final : public QTranslator
{
public:
    explicit BundleTranslator(const Bundle& bundle) : mBundle(bundle)
    {
        QCoreApplication::installTranslator(this);
    }
    ~BundleTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char* /*context*/, const char* text, const char* /*comment*/,
                      int /*count*/) const override
    {
        return QString::fromStdString(mBundle.localizedString(text, "", ""));
    }

private:
    const Bundle& mBundle;
};

/// The form loader loads every designer plug-in below the library paths when it is made.
std::unique_ptr<QUiLoader> makeLoader(const Bundle& bundle)
{
    const QStringList paths = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
    auto loader = std::make_unique<Loader>(bundle);
    QCoreApplication::setLibraryPaths(paths);
    return loader;
}

/// A form gives font sizes in relation to the desktop's, in the dynamic property "fontScale".
void scaleFonts(QWidget& form)
{
    for (QWidget* widget : form.findChildren<QWidget*>()) {
        const double scale = widget->property("fontScale").toDouble();
        QFont font = widget->font();
        if (scale <= 0 || font.pointSizeF() <= 0)
            continue;
        font.setPointSizeF(font.pointSizeF() * scale);
        widget->setFont(font);
    }
}

/// Whether the language of the bundle's texts is. The folder of the catalogue in force names it.
bool isWrittenFromRightToLeft(const Bundle& bundle)
{
    const auto catalogue = bundle.pathForResource("Localizable", "strings");
    if (!catalogue)
        return false;
    const QString folder = QFileInfo(QString::fromStdString(*catalogue)).dir().dirName();
    return QLocale(folder.section(u'.', 0, 0)).textDirection() == Qt::RightToLeft;
}

/// A form marks what explains rather than says with the dynamic property "secondary".
void tintLabels(QWidget& form)
{
    for (QLabel* label : form.findChildren<QLabel*>()) {
        if (label->property("secondary").toBool())
            LabelTint::of(*label).setSecondary(true);
    }
}

} // namespace

FormLoader::FormLoader(const Bundle& bundle) : mBundle(bundle), mLoader(makeLoader(bundle)) {}

FormLoader::~FormLoader() = default;

std::unique_ptr<QWidget> FormLoader::loadForm(QIODevice& file)
{
    const BundleTranslator translator(mBundle);
    std::unique_ptr<QWidget> form(mLoader->load(&file));
    if (!form)
        return nullptr;
    scaleFonts(*form);
    tintLabels(*form);
    if (isWrittenFromRightToLeft(mBundle))
        form->setLayoutDirection(Qt::RightToLeft);
    return form;
}

QString FormLoader::errorString() const { return mLoader->errorString(); }

} // namespace farview
