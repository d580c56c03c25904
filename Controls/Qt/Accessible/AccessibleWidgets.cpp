#include "Controls/Qt/Accessible/AccessibleWidgets.h"

#include "Controls/Qt/Accessible/AccessibleTable.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapWidget.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Qt/Table/TableWidget.h"

#include <QAccessibleWidget>
#include <QFrame>

namespace farview
{
namespace
{

class AccessibleSwitch final : public QAccessibleWidget
{
public:
    explicit AccessibleSwitch(SwitchWidget* widget)
        : QAccessibleWidget(widget, QAccessible::CheckBox), mSwitch(widget)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = mSwitch->isOn();
        state.busy = mSwitch->isMoving();
        return state;
    }
    QStringList actionNames() const override
    {
        return mSwitch->isEnabled() ? QStringList{toggleAction(), setFocusAction()} : QStringList{};
    }
    void doAction(const QString& name) override
    {
        if (name == toggleAction())
            mSwitch->click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    SwitchWidget* mSwitch;
};

class AccessiblePopUp final : public QAccessibleWidget
{
public:
    explicit AccessiblePopUp(PopUpWidget* widget)
        : QAccessibleWidget(widget, QAccessible::ButtonMenu), mPopUp(widget)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = mPopUp->openMenu() != nullptr;
        return state;
    }
    // What is chosen is not read out for this role unless it is the name.
    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Name && !mPopUp->title().isEmpty())
            return mPopUp->title();
        return QAccessibleWidget::text(kind == QAccessible::Description ? QAccessible::Name : kind);
    }
    // The open menu is a window of its own; only here can it be found.
    int childCount() const override { return mPopUp->openMenu() ? 1 : 0; }
    QAccessibleInterface* child(int index) const override
    {
        return index == 0 ? QAccessible::queryAccessibleInterface(mPopUp->openMenu()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        return mPopUp->openMenu() && child->object() == mPopUp->openMenu() ? 0 : -1;
    }
    QStringList actionNames() const override
    {
        return mPopUp->isEnabled() ? QStringList{pressAction(), setFocusAction()} : QStringList{};
    }
    void doAction(const QString& name) override
    {
        if (name != pressAction())
            QAccessibleWidget::doAction(name);
        else if (QMenu* menu = mPopUp->openMenu())
            menu->close();
        else if (mPopUp->isEnabled())
            emit mPopUp->openRequested();
    }

private:
    PopUpWidget* mPopUp;
};

/// Its name tells where the device's screen is; each side has an action.
class AccessibleScreenMap final : public QAccessibleWidget
{
public:
    explicit AccessibleScreenMap(ScreenMapWidget* widget)
        : QAccessibleWidget(widget, QAccessible::Graphic), mMap(widget)
    {
    }

    QStringList actionNames() const override
    {
        QStringList names;
        for (const auto& [side, property] : actions)
            names += nameOf(property);
        return mMap->isEnabled() ? names << setFocusAction() : QStringList{};
    }
    void doAction(const QString& name) override
    {
        for (const auto& [side, property] : actions) {
            if (name == nameOf(property))
                return mMap->choose(side);
        }
        QAccessibleWidget::doAction(name);
    }

private:
    struct SideAction {
        ScreenSide side;
        const char* property; ///< of the widget, with what the form calls the action
    };
    static constexpr SideAction actions[] = {{ScreenSide::right, "moveRight"},
                                             {ScreenSide::left, "moveLeft"},
                                             {ScreenSide::above, "moveAbove"},
                                             {ScreenSide::below, "moveBelow"}};

    QString nameOf(const char* property) const { return mMap->property(property).toString(); }

    ScreenMapWidget* mMap;
};

QAccessibleInterface* makeAccessible(const QString& /*className*/, QObject* object)
{
    if (auto* widget = qobject_cast<SwitchWidget*>(object))
        return new AccessibleSwitch(widget);
    if (auto* widget = qobject_cast<PopUpWidget*>(object))
        return new AccessiblePopUp(widget);
    if (auto* widget = qobject_cast<ScreenMapWidget*>(object))
        return new AccessibleScreenMap(widget);
    if (auto* widget = qobject_cast<SpinnerWidget*>(object))
        return new QAccessibleWidget(widget, QAccessible::Animation);
    if (auto* widget = qobject_cast<TableWidget*>(object))
        return new AccessibleTable(widget);
    // The toolkit calls a line between groups a frame, which on the bus is a window.
    if (auto* frame = qobject_cast<QFrame*>(object); frame && frame->frameShape() == QFrame::HLine)
        return new QAccessibleWidget(frame, QAccessible::Separator);
    return nullptr;
}

} // namespace

void installAccessibleWidgets()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    static_cast<void>(installed);
}

} // namespace farview
