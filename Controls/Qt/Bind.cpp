#include "Controls/Qt/Binding.h"
#include "Controls/Qt/Forms/FrameContainer.h"
#include "Controls/Qt/Forms/SheetBindings.h"
#include "Controls/Qt/Forms/SheetWidget.h"
#include "Controls/Qt/PopUp/PopUpBinding.h"
#include "Controls/Qt/PopUp/PopUpWidget.h"
#include "Controls/Qt/ScreenMap/ScreenMapBinding.h"
#include "Controls/Qt/SpinnerWidget.h"
#include "Controls/Qt/Switch/SwitchWidget.h"
#include "Controls/Qt/Switch/WidgetAnimator.h"
#include "Controls/Qt/Table/TableBinding.h"
#include "Controls/Qt/Text/ChiseledTextWidget.h"
#include "Controls/Qt/Text/LabelTint.h"
#include "Controls/Qt/Text/PlainText.h"
#include "Controls/Switch/FVEChiseledTextButton.h"
#include "Controls/Switch/QLNOnOffView.h"
#include "Controls/TabView.h"

#include <QAbstractButton>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>
#include <QTabWidget>

#include <string>
#include <utility>

namespace farview
{
namespace
{

/// The on/off switch. The widget hands the user's moves to the slider itself.
class SwitchBinding : public Binding
{
public:
    SwitchBinding(std::shared_ptr<QLNOnOffView> view, SwitchWidget* widget)
        : Binding(view, widget), mOnOff(std::move(view)), mSwitch(widget)
    {
    }

    ~SwitchBinding() override
    {
        // The switch may outlive its window, and the pictures' bundle.
        mOnOff->slider()->setAnimator(nullptr);
        mOnOff->setImageSource({});
    }

protected:
    void adopt() override
    {
        if (mSwitch->testAttribute(Qt::WA_ForceDisabled))
            mOnOff->setEnabled(false);
        mOnOff->setImageSource(mSwitch->imageSource());
        mOnOff->initWithFrame({{double(mSwitch->x()), double(mSwitch->y())}, {}});
        mOnOff->slider()->setAnimator(std::make_shared<WidgetAnimator>(mSwitch));
        mSwitch->setSlider(mOnOff->slider());
        mSliderSubscription = mOnOff->slider()->observe([this](Change change) { refresh(change); });
    }

    void show(Change /*change*/) override
    {
        mSwitch->setEnabled(mOnOff->isEnabled());
        mSwitch->refresh();
    }

private:
    std::shared_ptr<QLNOnOffView> mOnOff;
    SwitchWidget* mSwitch;
    Subscription mSliderSubscription;
};

/// A field to type into.
class LineEditBinding : public Binding
{
public:
    LineEditBinding(std::shared_ptr<TextField> field, QLineEdit* lineEdit)
        : Binding(field, lineEdit), mField(std::move(field)), mLineEdit(lineEdit)
    {
        connect(lineEdit, &QLineEdit::textChanged, this, [this](const QString& text) {
            // Assistive technology sets the text instead of typing it.
            if (isShowing())
                return;
            // What was typed is on show already: setting it again would move the cursor.
            mShownText = text.toStdString();
            userDid([this] { mField->userTyped(mShownText); });
        });
    }

protected:
    void adopt() override
    {
        mShownText = mLineEdit->text().toStdString();
        mField->setStringValue(mShownText);
        mField->setEditable(!mLineEdit->isReadOnly());
    }

    void show(Change change) override
    {
        mLineEdit->setReadOnly(!mField->isEditable());
        if (mField->stringValue() != mShownText) {
            mShownText = mField->stringValue();
            mLineEdit->setText(plainLine(mShownText));
        }
        if (change == Change::textSelection) {
            mLineEdit->selectAll();
            mLineEdit->setFocus();
        }
    }

private:
    std::shared_ptr<TextField> mField;
    QLineEdit* mLineEdit;
    std::string mShownText;
};

/// A push button, a flat text button or a check box.
class ButtonBinding : public Binding
{
public:
    ButtonBinding(std::shared_ptr<Button> button, QAbstractButton* widget)
        : Binding(button, widget), mButton(std::move(button)), mButtonWidget(widget)
    {
        const auto click = [this] { userDid([this] { mButton->performClick(nullptr); }); };
        // Assistive technology ticks a box without a click.
        if (widget->isCheckable())
            connect(widget, &QAbstractButton::toggled, this, click);
        else
            connect(widget, &QAbstractButton::clicked, this, click);
    }

protected:
    void adopt() override
    {
        mFileText = mButtonWidget->text();
        if (mButtonWidget->shortcut() != QKeySequence::mnemonic(mFileText))
            mKey = mButtonWidget->shortcut();
        mShownTitle = withoutShortcut(mFileText);
        mButton->setTitle(mShownTitle);
        mButton->setKind(mButtonWidget->isCheckable() ? Button::Kind::checkBox
                                                      : Button::Kind::push);
        mButton->setState(mButtonWidget->isChecked() ? 1 : 0);
    }

    void show(Change /*change*/) override
    {
        // The file's own text carries the shortcut, so it stays until another one is set, and
        // returns.
        if (mButton->title() != mShownTitle) {
            mShownTitle = mButton->title();
            const bool isFiles = mShownTitle == withoutShortcut(mFileText);
            mButtonWidget->setText(isFiles ? mFileText : plainMenuText(mShownTitle));
            // A new text takes any shortcut away.
            if (!mKey.isEmpty())
                mButtonWidget->setShortcut(mKey);
        }
        if (mButtonWidget->isCheckable())
            mButtonWidget->setChecked(mButton->state() != 0);
    }

private:
    std::shared_ptr<Button> mButton;
    QAbstractButton* mButtonWidget;
    QString mFileText;
    QKeySequence mKey; ///< that the file names beside the text
    std::string mShownTitle;
};

/// A button that draws its own title.
class ChiseledTextBinding : public ButtonBinding
{
public:
    ChiseledTextBinding(std::shared_ptr<FVEChiseledTextButton> button, ChiseledTextWidget* widget)
        : ButtonBinding(button, widget), mEngraved(std::move(button)), mTextWidget(widget)
    {
    }

protected:
    void adopt() override
    {
        ButtonBinding::adopt();
        mTextWidget->setButton(mEngraved);
    }

private:
    std::shared_ptr<FVEChiseledTextButton> mEngraved;
    ChiseledTextWidget* mTextWidget;
};

/// A label. Its text is never taken for markup.
class TextFieldBinding : public Binding
{
public:
    TextFieldBinding(std::shared_ptr<TextField> field, QLabel* label)
        : Binding(field, label), mField(std::move(field)), mLabel(label)
    {
        label->setTextFormat(Qt::PlainText);
    }

protected:
    void adopt() override
    {
        mShownText =
            mLabel->buddy() ? withoutShortcut(mLabel->text()) : mLabel->text().toStdString();
        mField->setStringValue(mShownText);
    }

    void show(Change /*change*/) override
    {
        showRole();
        if (mField->stringValue() == mShownText)
            return;
        mShownText = mField->stringValue();
        mLabel->setText(plainText(mShownText));
        if (mLabel->property("spelled").toBool())
            mLabel->setAccessibleName(spelled(mLabel->text()));
    }

private:
    /// As it is read out: letter for letter.
    static QString spelled(const QString& text)
    {
        return QString(text).remove(QChar::Nbsp).split(QString(), Qt::SkipEmptyParts).join(u' ');
    }

    void showRole()
    {
        if (std::exchange(mShownRole, mField->textRole()) != mField->textRole())
            LabelTint::of(*mLabel).setError(mShownRole == TextField::Role::error);
    }

    std::shared_ptr<TextField> mField;
    QLabel* mLabel;
    std::string mShownText;
    TextField::Role mShownRole = TextField::Role::normal;
};

/// A picture: the desktop's own warning sign, loaded when it is first seen.
class ImageViewBinding : public Binding
{
public:
    ImageViewBinding(std::shared_ptr<ImageView> image, QLabel* label)
        : Binding(std::move(image), label), mLabel(label)
    {
        const int size = label->style()->pixelMetric(QStyle::PM_LargeIconSize, nullptr, label);
        label->setFixedSize(size, size);
    }

protected:
    void show(Change /*change*/) override
    {
        if (isHidden() || !mLabel->pixmap(Qt::ReturnByValue).isNull())
            return;
        const QIcon sign =
            mLabel->style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, mLabel);
        mLabel->setPixmap(sign.pixmap(mLabel->size(), mLabel->devicePixelRatioF()));
    }

private:
    QLabel* mLabel;
};

class ProgressIndicatorBinding : public Binding
{
public:
    ProgressIndicatorBinding(std::shared_ptr<ProgressIndicator> indicator, SpinnerWidget* spinner)
        : Binding(indicator, spinner), mIndicator(std::move(indicator)), mSpinner(spinner)
    {
    }

protected:
    void show(Change /*change*/) override { mSpinner->setAnimating(mIndicator->isAnimating()); }

private:
    std::shared_ptr<ProgressIndicator> mIndicator;
    SpinnerWidget* mSpinner;
};

/// Tabs; a page is identified by its object name.
class TabViewBinding : public Binding
{
public:
    TabViewBinding(std::shared_ptr<TabView> tabs, QTabWidget* widget)
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

protected:
    void adopt() override
    {
        std::vector<std::string> identifiers;
        for (int i = 0; i < mTabWidget->count(); ++i)
            identifiers.push_back(mTabWidget->widget(i)->objectName().toStdString());
        mTabs->setIdentifiers(std::move(identifiers));
    }

    void show(Change /*change*/) override
    {
        for (int i = 0; i < mTabWidget->count(); ++i) {
            if (mTabWidget->widget(i)->objectName().toStdString() == mTabs->selectedIdentifier())
                mTabWidget->setCurrentIndex(i);
        }
    }

private:
    std::shared_ptr<TabView> mTabs;
    QTabWidget* mTabWidget;
};

/// A view without a look of its own: only its place counts.
class PlainBinding : public Binding
{
public:
    using Binding::Binding;

protected:
    void show(Change /*change*/) override {}
};

enum class Match { otherControl, wrongWidget, bound };

/// Binds when the view is exactly that kind of control.
template <typename BindingClass, typename ViewClass, typename WidgetClass>
Match tryBind(const std::shared_ptr<View>& view, QWidget* widget)
{
    const auto typedView = std::dynamic_pointer_cast<ViewClass>(view);
    if (!typedView)
        return Match::otherControl;
    auto* typedWidget = qobject_cast<WidgetClass*>(widget);
    if (!typedWidget)
        return Match::wrongWidget;
    auto* binding = new BindingClass(typedView, typedWidget);
    binding->start();
    return Match::bound;
}

/// A text field is a label, unless the widget is one to type into.
Match tryLineEdit(const std::shared_ptr<View>& view, QWidget* widget)
{
    return qobject_cast<QLineEdit*>(widget)
               ? tryBind<LineEditBinding, TextField, QLineEdit>(view, widget)
               : Match::otherControl;
}

/// An engraved word, unless the widget is a button of the desktop's own.
Match tryChiseledText(const std::shared_ptr<View>& view, QWidget* widget)
{
    return qobject_cast<ChiseledTextWidget*>(widget)
               ? tryBind<ChiseledTextBinding, FVEChiseledTextButton, ChiseledTextWidget>(view,
                                                                                         widget)
               : Match::otherControl;
}

// What a control derives from comes after it.
using Attempt = Match (*)(const std::shared_ptr<View>&, QWidget*);
constexpr Attempt attempts[] = {
    tryBind<PopUpBinding, PopUpButton, PopUpWidget>,
    tryChiseledText,
    tryBind<ButtonBinding, Button, QAbstractButton>,
    tryLineEdit,
    tryBind<TextFieldBinding, TextField, QLabel>,
    tryBind<TableBinding, TableView, QTableView>,
    tryBind<ImageViewBinding, ImageView, QLabel>,
    tryBind<ProgressIndicatorBinding, ProgressIndicator, SpinnerWidget>,
    tryBind<TabViewBinding, TabView, QTabWidget>,
    tryBind<ScreenMapBinding, ScreenMap, ScreenMapWidget>,
    tryBind<SwitchBinding, QLNOnOffView, SwitchWidget>,
    tryBind<SheetBinding, Panel, SheetWidget>,
    tryBind<WindowBinding, Window, SheetWidget>,
    tryBind<PlainBinding, View, QWidget>,
};

} // namespace

bool bindToWidget(const std::shared_ptr<View>& view, QWidget* widget)
{
    if (auto* container = qobject_cast<FrameContainer*>(widget->parentWidget()))
        container->hold(view, widget);
    for (const Attempt attempt : attempts) {
        const Match match = attempt(view, widget);
        if (match != Match::otherControl)
            return match == Match::bound;
    }
    return false;
}

} // namespace farview
