#pragma once

#include "Controls/Qt/Binding.h"
#include "Controls/Switch/FVEChiseledTextButton.h"
#include "Controls/TabView.h"

#include <QAbstractButton>
#include <QLabel>
#include <QTabWidget>

namespace farview
{

class ChiseledTextWidget;
class SpinnerWidget;

/// A push button, a flat text button or a check box.
class ButtonBinding : public Binding
{
    Q_OBJECT

public:
    ButtonBinding(std::shared_ptr<Button> button, QAbstractButton* widget);

protected:
    void adopt() override;
    void show(Change change) override;

private:
    std::shared_ptr<Button> mButton;
    QAbstractButton* mButtonWidget;
    QString mFileText;
    std::string mShownTitle;
};

/// A button that draws its own title.
class ChiseledTextBinding : public ButtonBinding
{
    Q_OBJECT

public:
    ChiseledTextBinding(std::shared_ptr<FVEChiseledTextButton> button, ChiseledTextWidget* widget);

protected:
    void adopt() override;

private:
    std::shared_ptr<FVEChiseledTextButton> mEngraved;
    ChiseledTextWidget* mTextWidget;
};

/// A label. Its text is never taken for markup.
class TextFieldBinding : public Binding
{
    Q_OBJECT

public:
    TextFieldBinding(std::shared_ptr<TextField> field, QLabel* label);

protected:
    void adopt() override;
    void show(Change change) override;

private:
    void showRole();

    std::shared_ptr<TextField> mField;
    QLabel* mLabel;
    std::string mShownText;
    TextField::Role mShownRole = TextField::Role::normal;
};

/// A picture: the desktop's own warning sign, loaded when it is first seen.
class ImageViewBinding : public Binding
{
    Q_OBJECT

public:
    ImageViewBinding(std::shared_ptr<ImageView> image, QLabel* label);

protected:
    void show(Change change) override;

private:
    QLabel* mLabel;
};

class ProgressIndicatorBinding : public Binding
{
    Q_OBJECT

public:
    ProgressIndicatorBinding(std::shared_ptr<ProgressIndicator> indicator, SpinnerWidget* spinner);

protected:
    void show(Change change) override;

private:
    std::shared_ptr<ProgressIndicator> mIndicator;
    SpinnerWidget* mSpinner;
};

/// Tabs; a page is identified by its object name.
class TabViewBinding : public Binding
{
    Q_OBJECT

public:
    TabViewBinding(std::shared_ptr<TabView> tabs, QTabWidget* widget);

protected:
    void adopt() override;
    void show(Change change) override;

private:
    std::shared_ptr<TabView> mTabs;
    QTabWidget* mTabWidget;
};

} // namespace farview
