#include "Controls/Qt/Binding.h"

#include "Controls/Qt/Text/PlainText.h"

#include <QApplication>

#include <utility>

namespace farview
{
namespace
{

/// Counts, so that a change inside a change does not end the outer one's protection.
class Counted
{
public:
    explicit Counted(int& count) : mCount(count) { ++mCount; }
    ~Counted() { --mCount; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& mCount;
};

void setKeepsSpace(QWidget* widget, bool keeps)
{
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(keeps);
    widget->setSizePolicy(policy);
}

bool isHiddenByFile(const QWidget* widget)
{
    return widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
}

} // namespace

Binding::Binding(std::shared_ptr<View> view, QWidget* widget)
    : QObject(widget), mView(std::move(view)), mWidget(widget)
{
    setKeepsSpace(widget, !widget->property("folds").toBool());
}

void Binding::letSpaceFold() { setKeepsSpace(mWidget, false); }

QWidget* Binding::widgetShowing(const View& view)
{
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        for (const auto* binding : window->findChildren<Binding*>()) {
            if (binding->mView.get() == &view)
                return binding->mWidget;
        }
    }
    return nullptr;
}

void Binding::start()
{
    adoptCommon();
    adopt();
    mSubscription = mView->observe([this](Change change) { refresh(change); });
    refresh(Change::properties);
}

void Binding::refresh(Change change)
{
    const Counted counted(mShowing);
    showCommon();
    show(change);
}

void Binding::adoptCommon()
{
    if (isHiddenByFile(mWidget))
        mView->setHidden(true);
    if (auto* control = dynamic_cast<Control*>(mView.get());
        control && mWidget->testAttribute(Qt::WA_ForceDisabled))
        control->setEnabled(false);
    mIsDescribedByFile = !mWidget->accessibleDescription().isEmpty();
}

void Binding::showCommon()
{
    if (mWidget->isHidden() != isHidden())
        mWidget->setHidden(isHidden());
    if (const auto* control = dynamic_cast<const Control*>(mView.get()))
        showEnabled(control->isEnabled());
    // The file's own tool tip stays until another one is set.
    if (std::exchange(mShownToolTip, mView->toolTip()) != mView->toolTip())
        showToolTip();
}

// A control that is out of use for a moment loses the keyboard to its neighbour. It gets it back,
// unless the user has gone elsewhere meanwhile.
void Binding::showEnabled(bool enabled)
{
    const QWidget* window = mWidget->window();
    const bool hadKeyboard = window->focusWidget() == mWidget;
    mWidget->setEnabled(enabled);
    if (!enabled && hadKeyboard)
        mHasKeyboardMeanwhile = window->focusWidget();
    if (!enabled)
        return;
    if (mHasKeyboardMeanwhile && window->focusWidget() == mHasKeyboardMeanwhile)
        mWidget->setFocus();
    mHasKeyboardMeanwhile = nullptr;
}

void Binding::showToolTip()
{
    mWidget->setToolTip(plainToolTip(mShownToolTip));
    // Without a description the tool tip is read out, with the marks that are not for people.
    if (!mIsDescribedByFile)
        mWidget->setAccessibleDescription(plainText(mShownToolTip));
}

} // namespace farview
