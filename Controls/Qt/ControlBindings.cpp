#include "Controls/Qt/ControlBindings.h"

#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/LabelTint.h"
#include "Controls/Qt/Text/PlainText.h"

#include <QStyle>

#include <utility>

namespace farview
{
ButtonBinding::ButtonBinding(std::shared_ptr<Button> button, QAbstractButton* widget)
    : Binding(button, widget), mButton(std::move(button)), mButtonWidget(widget)
{
    const auto click = [this] { userDid([this] { mButton->performClick(nullptr); }); };
    // Assistive technology ticks a box without a click.
    if (widget->isCheckable())
        connect(widget, &QAbstractButton::toggled, this, click);
    else
        connect(widget, &QAbstractButton::clicked, this, click);
}

void ButtonBinding::adopt()
{
    mFileText = mButtonWidget->text();
    mShownTitle = withoutShortcut(mFileText);
    mButton->setTitle(mShownTitle);
    mButton->setKind(mButtonWidget->isCheckable() ? Button::Kind::checkBox : Button::Kind::push);
    mButton->setState(mButtonWidget->isChecked() ? 1 : 0);
}

void ButtonBinding::show(Change /*change*/)
{
    // The file's own text carries the shortcut, so it stays until another one is set, and returns.
    if (mButton->title() != mShownTitle) {
        mShownTitle = mButton->title();
        const bool isFiles = mShownTitle == withoutShortcut(mFileText);
        mButtonWidget->setText(isFiles ? mFileText : plainMenuText(mShownTitle));
    }
    if (mButtonWidget->isCheckable())
        mButtonWidget->setChecked(mButton->state() != 0);
}

ChiseledTextBinding::ChiseledTextBinding(std::shared_ptr<FVEChiseledTextButton> button,
                                         ChiseledTextWidget* widget)
    : ButtonBinding(button, widget), mEngraved(std::move(button)), mTextWidget(widget)
{
}

void ChiseledTextBinding::adopt()
{
    ButtonBinding::adopt();
    mTextWidget->setButton(mEngraved);
}

TextFieldBinding::TextFieldBinding(std::shared_ptr<TextField> field, QLabel* label)
    : Binding(field, label), mField(std::move(field)), mLabel(label)
{
    label->setTextFormat(Qt::PlainText);
}

void TextFieldBinding::adopt()
{
    mShownText = mLabel->buddy() ? withoutShortcut(mLabel->text()) : mLabel->text().toStdString();
    mField->setStringValue(mShownText);
}

void TextFieldBinding::show(Change /*change*/)
{
    showRole();
    if (mField->stringValue() == mShownText)
        return;
    mShownText = mField->stringValue();
    mLabel->setText(plainText(mShownText));
}

void TextFieldBinding::showRole()
{
    if (std::exchange(mShownRole, mField->textRole()) != mField->textRole())
        LabelTint::of(*mLabel).setError(mShownRole == TextField::Role::error);
}

ImageViewBinding::ImageViewBinding(std::shared_ptr<ImageView> image, QLabel* label)
    : Binding(std::move(image), label), mLabel(label)
{
    const int size = label->style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, label);
    label->setFixedSize(size, size);
}

void ImageViewBinding::show(Change /*change*/)
{
    if (isHidden() || !mLabel->pixmap(Qt::ReturnByValue).isNull())
        return;
    const QIcon sign = mLabel->style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, mLabel);
    mLabel->setPixmap(sign.pixmap(mLabel->size(), mLabel->devicePixelRatioF()));
}

ProgressIndicatorBinding::ProgressIndicatorBinding(std::shared_ptr<ProgressIndicator> indicator,
                                                   SpinnerWidget* spinner)
    : Binding(indicator, spinner), mIndicator(std::move(indicator)), mSpinner(spinner)
{
}

void ProgressIndicatorBinding::show(Change /*change*/)
{
    mSpinner->setAnimating(mIndicator->isAnimating());
}

TabViewBinding::TabViewBinding(std::shared_ptr<TabView> tabs, QTabWidget* widget)
    : Binding(tabs, widget), mTabs(std::move(tabs)), mTabWidget(widget)
{
    connect(widget, &QTabWidget::currentChanged, this, [this] {
        const QWidget* page = mTabWidget->currentWidget();
        if (!page)
            return;
        const std::string identifier = page->objectName().toStdString();
        userDid([this, identifier] { mTabs->selectTabViewItemWithIdentifier(identifier); });
    });
}

void TabViewBinding::adopt()
{
    std::vector<std::string> identifiers;
    for (int i = 0; i < mTabWidget->count(); ++i)
        identifiers.push_back(mTabWidget->widget(i)->objectName().toStdString());
    mTabs->setIdentifiers(std::move(identifiers));
}

void TabViewBinding::show(Change /*change*/)
{
    for (int i = 0; i < mTabWidget->count(); ++i) {
        if (mTabWidget->widget(i)->objectName().toStdString() == mTabs->selectedIdentifier())
            mTabWidget->setCurrentIndex(i);
    }
}

} // namespace farview
