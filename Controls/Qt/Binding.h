#pragma once

#include "Controls/Control.h"
#include "Platform/Types/Subscription.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <string>

namespace farview
{

/// Ties one control to one widget: what is set on the control shows on the widget, what the user
/// does to the widget reaches the control. Owned by the widget; keeps the control alive. Main
/// thread only.
class Binding : public QObject
{
    Q_OBJECT

public:
    Binding(std::shared_ptr<View> view, QWidget* widget);

    /// Takes over from the interface file what nothing has set yet, then follows the control.
    void start();

    /// A control that is hidden leaves its place empty, unless this is called.
    void letSpaceFold();

    /// The widget that shows that view; null when none does.
    static QWidget* widgetShowing(const View& view);

protected:
    View& view() const { return *mView; }
    QWidget* widget() const { return mWidget; }

    /// Reads the widget's state into the control. Called once, before anything is shown.
    virtual void adopt() {}
    /// Puts the control's state on the widget.
    virtual void show(Change change) = 0;
    virtual bool isHidden() const { return mView->isHidden(); }

    /// Whether the widget is being changed by us, so that its signals are not the user's doing.
    bool isShowing() const { return mShowing > 0; }
    void refresh(Change change);
    /// Calls what the user asked for, then makes widget and control agree again, if both are still
    /// there.
    template <typename Action> void userDid(Action action)
    {
        if (isShowing())
            return;
        const std::shared_ptr<View> keptAlive = mView;
        const QPointer<Binding> self = this;
        action();
        if (self)
            refresh(Change::properties);
    }

private:
    void adoptCommon();
    void showCommon();
    void showEnabled(bool enabled);
    void showToolTip();

    std::shared_ptr<View> mView;
    QWidget* mWidget;
    Subscription mSubscription;
    std::string mShownToolTip;
    QPointer<QWidget> mHasKeyboardMeanwhile;
    bool mIsDescribedByFile = false;
    int mShowing = 0;
};

/// Makes the binding that fits control and widget. False when the widget cannot show such a
/// control.
bool bindToWidget(const std::shared_ptr<View>& view, QWidget* widget);

} // namespace farview
