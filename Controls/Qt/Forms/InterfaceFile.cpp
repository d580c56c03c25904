#include "Controls/Qt/Forms/InterfaceFile.h"

#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/Forms/PageScroller.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/ImageFiles.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Qt/Table/TableWidget.h"
#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/LabelTint.h"
#include "Platform/Bundle.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPainter>
#include <QTranslator>
#include <QUiLoader>

#include <set>

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
        if (className == u"farview::ScreenMapWidget")
            return new ScreenMapWidget(parent);
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

/// Reads a form without looking for designer plug-ins on the machine; knows our own widgets, and
/// shows each text in the user's language as the bundle has it, from right to left where that is
/// how the language is written.
class FormLoader
{
public:
    explicit FormLoader(const Bundle& bundle) : mBundle(bundle), mLoader(makeLoader(bundle)) {}
    ~FormLoader() = default;

    /// Null when the form is damaged; `errorString` then says how.
    std::unique_ptr<QWidget> loadForm(QIODevice& file)
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

    QString errorString() const { return mLoader->errorString(); }

private:
    const Bundle& mBundle;
    std::unique_ptr<QUiLoader> mLoader;
};

constexpr qint64 largestFile = 4 * 1024 * 1024;

/// A selector only refers to its name, so the names found in files are kept.
Selector keptSelector(const QString& name)
{
    static std::set<std::string> names;
    return Selector{*names.insert(name.toStdString()).first};
}

std::string inQuotes(std::string_view name) { return "\"" + std::string(name) + "\""; }

QWidget* findWidget(QWidget& root, std::string_view name)
{
    const QString text = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    return root.objectName() == text ? &root : root.findChild<QWidget*>(text);
}

} // namespace

InterfaceFile::InterfaceFile(const Bundle& bundle, std::string name)
    : mBundle(bundle), mName(std::move(name))
{
}

std::unique_ptr<QWidget> InterfaceFile::load(const std::shared_ptr<InterfaceOwner>& owner,
                                             std::string& error)
{
    installAccessibleWidgets();
    mConnected.clear();
    auto root = loadWidget(error);
    if (!root || !connectOutlets(*root, *owner, error) || !connectActions(*root, owner, error))
        return nullptr;
    return root;
}

std::unique_ptr<QWidget> InterfaceFile::loadWidget(std::string& error) const
{
    const auto path = mBundle.pathForResource(mName, "ui");
    if (!path) {
        error = "The interface file " + inQuotes(fileName()) + " is missing.";
        return nullptr;
    }
    QFile file(QString::fromStdString(*path));
    if (!file.open(QIODevice::ReadOnly) || file.size() > largestFile) {
        error = "The interface file " + inQuotes(fileName()) + " cannot be read.";
        return nullptr;
    }
    FormLoader loader(mBundle);
    std::unique_ptr<QWidget> root = loader.loadForm(file);
    if (!root)
        error = "The interface file " + inQuotes(fileName()) +
                " is damaged: " + loader.errorString().toStdString();
    return root;
}

bool InterfaceFile::connectOutlets(QWidget& root, InterfaceOwner& owner, std::string& error)
{
    // All names first: an owner is connected completely or not at all.
    for (const Outlet& outlet : owner.outlets()) {
        if (!findWidget(root, outlet.name)) {
            error = fileName() + " has no object named " + inQuotes(outlet.name) + ".";
            return false;
        }
    }
    for (const Outlet& outlet : owner.outlets()) {
        QWidget* widget = findWidget(root, outlet.name);
        const auto view = outlet.connect(owner);
        if (!view || !bindToWidget(view, widget)) {
            error = inQuotes(outlet.name) + " in " + fileName() + " is a " +
                    widget->metaObject()->className() + ", which cannot show it.";
            return false;
        }
        mConnected[widget] = view;
    }
    return true;
}

std::shared_ptr<Control> InterfaceFile::controlFor(QWidget* widget) const
{
    const auto found = mConnected.find(widget);
    if (found != mConnected.end())
        return std::dynamic_pointer_cast<Control>(found->second);
    // A button that the owner needs no outlet for: its binding keeps it.
    auto button = std::make_shared<Button>();
    const bool isButton = qobject_cast<QAbstractButton*>(widget) != nullptr;
    return isButton && bindToWidget(button, widget) ? button : nullptr;
}

bool InterfaceFile::connectActions(QWidget& root, const std::shared_ptr<InterfaceOwner>& owner,
                                   std::string& error) const
{
    for (QWidget* widget : root.findChildren<QWidget*>()) {
        const QString action = widget->property("action").toString();
        if (action.isEmpty())
            continue;
        const Selector selector = keptSelector(action);
        const auto control = controlFor(widget);
        if (!control || !owner->respondsTo(selector)) {
            error = inQuotes(widget->objectName().toStdString()) + " in " + fileName() +
                    " asks for " + inQuotes(selector.name) + ", which " +
                    (control ? "its owner does not know." : "it cannot send.");
            return false;
        }
        control->setTarget(owner);
        control->setAction(selector);
    }
    return true;
}

} // namespace farview
