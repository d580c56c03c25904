#include "Controls/Qt/Text/LabelTint.h"

#include "Controls/Qt/Text/TextColors.h"

#include <QApplication>
#include <QEvent>

namespace farview
{

LabelTint& LabelTint::of(QLabel& label)
{
    auto* tint = label.findChild<LabelTint*>(QString(), Qt::FindDirectChildrenOnly);
    return tint ? *tint : *new LabelTint(label);
}

LabelTint::LabelTint(QLabel& label) : QObject(&label), mLabel(label)
{
    label.installEventFilter(this);
}

void LabelTint::setSecondary(bool secondary)
{
    mIsSecondary = secondary;
    show();
}

void LabelTint::setError(bool error)
{
    mIsError = error;
    show();
}

bool LabelTint::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
        show();
    return QObject::eventFilter(watched, event);
}

void LabelTint::show()
{
    const QWidget* parent = mLabel.parentWidget();
    const QPalette around = parent ? parent->palette() : QApplication::palette(&mLabel);
    QPalette own;
    if (mIsError || mIsSecondary)
        own.setColor(QPalette::WindowText, mIsError ? errorText(around) : secondaryText(around));
    // Setting a palette is told as a change of it.
    const bool isTinted = mIsError || mIsSecondary;
    const bool isShown =
        isTinted ? mLabel.palette().color(QPalette::WindowText) == own.color(QPalette::WindowText)
                 : !mLabel.testAttribute(Qt::WA_SetPalette);
    if (!isShown)
        mLabel.setPalette(own);
}

} // namespace farview
