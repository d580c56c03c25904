#include "Applications/Device/DeviceWindow.h"

#include <QVBoxLayout>

namespace farview
{

namespace
{

constexpr int windowWidth = 420;
constexpr double headlineScale = 1.6;

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

std::string headline(const DeviceStatus& status)
{
    if (status.announcedName.empty())
        return "Not announced yet";
    return status.announcedName;
}

std::string useText(const DeviceStatus& status)
{
    if (status.usedBy)
        return "In use by the computer at " + *status.usedBy + ".";
    return "Not in use. Choose this device in Farview Preferences on another computer.";
}

std::string optionsText(const DeviceStatus& status)
{
    if (!status.options)
        return "";
    const auto line = [](const char* what, bool on) {
        return std::string(what) + (on ? ": on" : ": off");
    };
    return line("Touch", status.options->touch) + "\n" +
           line("Retina resolutions", status.options->retina) + "\n" +
           line("HiDPI resolutions", status.options->hiDPI) + "\n" +
           line("Windows move back", status.options->windowsMoveBack);
}

std::string troubleText(const DeviceStatus& status)
{
    const bool both = !status.trouble.empty() && !status.portWarning.empty();
    return status.trouble + (both ? "\n" : "") + status.portWarning;
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
    QFont large = mName->font();
    large.setPointSizeF(large.pointSizeF() * headlineScale);
    mName->setFont(large);
    setWindowTitle(QStringLiteral("Farview Device"));
    resize(windowWidth, sizeHint().height());
}

void DeviceWindow::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    mClosed();
}

void DeviceWindow::showStatus(const DeviceStatus& status)
{
    setText(*mName, headline(status));
    setText(*mUse, useText(status));
    setText(*mOptions, optionsText(status));
    setText(*mTrouble, troubleText(status));
}

} // namespace farview
