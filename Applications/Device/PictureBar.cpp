#include "Applications/Device/PictureBar.h"

#include <QHBoxLayout>
#include <QLocale>

#include <algorithm>
#include <chrono>
#include <utility>

namespace farview
{

QString rateText(const DeviceTexts& texts, const QSize& picture, const ReceivedAmount& received)
{
    const double seconds = static_cast<double>(std::max<qint64>(received.milliseconds, 1)) / 1000;
    const double megabits = 8.0 * static_cast<double>(received.bytes) / 1e6;
    const auto number = [](double value, int digits) {
        return QLocale().toString(value, 'f', digits).toStdString();
    };
    return texts.text("%@ × %@ pixels, %@ pictures a second, %@ Mbit/s",
                      {std::to_string(picture.width()), std::to_string(picture.height()),
                       number(received.frames / seconds, 0), number(megabits / seconds, 1)});
}

PictureBar::PictureBar(const DeviceTexts& texts, const Actions& actions, QWidget* parent)
    : QFrame(parent), mTexts(texts)
{
    setObjectName(QStringLiteral("pictureBar"));
    setAccessibleName(texts.text("Picture bar"));
    setFrameShape(StyledPanel);
    setAutoFillBackground(true);
    auto* row = new QHBoxLayout(this);
    mName = addLabel("barName");
    mRate = addLabel("barRate");
    row->addStretch();
    mFit = addButton("fitButton", "&Fit to Screen");
    mFull = addButton("fullButton", "F&ull Screen");
    mDisconnect = addButton("disconnectButton", "&Disconnect");
    mFit->setCheckable(true);
    mFit->setChecked(true);
    mFull->setCheckable(true);
    connect(mFit, &QPushButton::clicked, this, actions.fit);
    connect(mFull, &QPushButton::clicked, this, actions.fillScreen);
    connect(mDisconnect, &QPushButton::clicked, this, actions.disconnect);
    connect(&mEverySecond, &QTimer::timeout, this, [this] { tellRate(); });
    mEverySecond.setInterval(std::chrono::seconds(1));
    hide();
}

QLabel* PictureBar::addLabel(const char* objectName)
{
    auto* label = new QLabel;
    label->setObjectName(QLatin1String(objectName));
    label->setTextFormat(Qt::PlainText);
    layout()->addWidget(label);
    return label;
}

QPushButton* PictureBar::addButton(const char* objectName, const char* title)
{
    auto* button = new QPushButton(mTexts.text(title));
    button->setObjectName(QLatin1String(objectName));
    button->setAutoDefault(true);         // pressed by Return, too
    button->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
    layout()->addWidget(button);
    return button;
}

void PictureBar::countFrame(std::size_t bytes)
{
    ++mReceived.frames;
    mReceived.bytes += bytes;
}

void PictureBar::open()
{
    show();
    mFit->setFocus(Qt::TabFocusReason);
}

void PictureBar::showEvent(QShowEvent* event)
{
    QFrame::showEvent(event);
    mReceived = {};
    mSince.start();
    mRate->clear();
    mEverySecond.start();
}

void PictureBar::tellRate()
{
    if (!isVisible())
        return mEverySecond.stop();
    mReceived.milliseconds = mSince.restart();
    mRate->setText(rateText(mTexts, mPicture, std::exchange(mReceived, {})));
}

} // namespace farview
