#include "Controls/Qt/Forms/InterfaceFile.h"

#include "Controls/Qt/Accessible/AccessibleWidgets.h"
#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Forms/FormLoader.h"
#include "Platform/Bundle.h"

#include <QAbstractButton>
#include <QFile>

#include <set>

namespace farview
{
namespace
{

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
