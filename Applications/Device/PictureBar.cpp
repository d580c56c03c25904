#include "Applications/Device/PictureBar.h"

#include <QLocale>
#include <QVBoxLayout>

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

QString inputHint(const DeviceTexts& texts, const LinkOptions& options)
{
    if (!options.touch)
        return texts.text("The computer does not take this device's input. Switch it on there: "
                          "“Use the device's touch input”.");
    return options.typing ? QString()
                          : texts.text("The computer does not let this device type. Allow it "
                                       "there: “This device may type”.");
}

PictureBar::PictureBar(const DeviceTexts& texts, const Actions& actions, QWidget* parent)
    : QFrame(parent), mTexts(texts)
{
    setObjectName(QStringLiteral("pictureBar"));
    setAccessibleName(texts.text("Picture bar"));
    setFrameShape(StyledPanel);
    setAutoFillBackground(true);
    setAttribute(Qt::WA_NoMousePropagation); // the picture below is another matter
    setCursor(Qt::ArrowCursor);
    auto* column = new QVBoxLayout(this);
    mRow = new QHBoxLayout;
    column->addLayout(mRow);
    mRow->addWidget(mName = newLabel("barName"));
    mRow->addWidget(mRate = newLabel("barRate"));
    mRow->addStretch();
    mFit = addButton("fitButton", "&Fit to Screen");
    mFull = addButton("fullButton", "F&ull Screen");
    mKeyboard = addButton("keyboardButton", "&Keyboard");
    mDisconnect = addButton("disconnectButton", "&Disconnect");
    for (QPushButton* each : {mFit, mFull, mKeyboard})
        each->setCheckable(true);
    mFit->setChecked(true);
    column->addWidget(mHint = newLabel("barHint"));
    mHint->setWordWrap(true);
    connect(mFit, &QPushButton::clicked, this, actions.fit);
    connect(mFull, &QPushButton::clicked, this, actions.fillScreen);
    connect(mKeyboard, &QPushButton::toggled, this, actions.showKeyboard);
    connect(mDisconnect, &QPushButton::clicked, this, actions.disconnect);
    connect(&mEverySecond, &QTimer::timeout, this, [this] { tellRate(); });
    mEverySecond.setInterval(std::chrono::seconds(1));
    setOptions({});
    hide();
}

QLabel* PictureBar::newLabel(const char* objectName)
{
    auto* label = new QLabel;
    label->setObjectName(QLatin1String(objectName));
    label->setTextFormat(Qt::PlainText);
    return label;
}

QPushButton* PictureBar::addButton(const char* objectName, const char* title)
{
    auto* button = new QPushButton(mTexts.text(title));
    button->setObjectName(QLatin1String(objectName));
    button->setAutoDefault(true);         // pressed by Return, too
    button->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
    mRow->addWidget(button);
    return button;
}

void PictureBar::setOptions(const LinkOptions& options)
{
    const bool mayType = options.touch && options.typing;
    mKeyboard->setVisible(mayType);
    mKeyboard->setChecked(mKeyboard->isChecked() && mayType);
    mHint->setText(inputHint(mTexts, options));
    mHint->setVisible(!mHint->text().isEmpty());
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
