#include "Applications/Device/DeviceWindow.h"

#include "Applications/Device/DeviceTexts.h"

#include <QVBoxLayout>

namespace farview
{

namespace
{

constexpr int kWidth = 420;
constexpr double kHeadlineScale = 1.6;

/// Names and addresses are foreign: never markup.
QLabel* plainLabel(QVBoxLayout& layout, const char* objectName)
{
    auto* label = new QLabel;
    label->setObjectName(QString::fromLatin1(objectName));
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setWordWrap(true);
    layout.addWidget(label);
    return label;
}

void setText(QLabel& label, const std::string& text)
{
    label.setText(QString::fromStdString(text));
    label.setVisible(!text.empty());
}

} // namespace

DeviceWindow::DeviceWindow(std::function<void()> closed) : mClosed(std::move(closed))
{
    auto* layout = new QVBoxLayout(this);
    mName = plainLabel(*layout, "deviceName");
    mUse = plainLabel(*layout, "deviceUse");
    mOptions = plainLabel(*layout, "deviceOptions");
    mTrouble = plainLabel(*layout, "deviceTrouble");
    layout->addStretch();
    QFont headline = mName->font();
    headline.setPointSizeF(headline.pointSizeF() * kHeadlineScale);
    mName->setFont(headline);
    setWindowTitle(QStringLiteral("Farview Device"));
    resize(kWidth, sizeHint().height());
}

void DeviceWindow::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    mClosed();
}

void DeviceWindow::showStatus(const DeviceStatus& status)
{
    setText(*mName, deviceHeadline(status));
    setText(*mUse, deviceUseText(status));
    setText(*mOptions, deviceOptionsText(status));
    setText(*mTrouble, deviceTroubleText(status));
}

} // namespace farview
