#pragma once

#include "Applications/Device/DeviceTexts.h"
#include "Link/Wire/LinkFrame.h"

#include <QElapsedTimer>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSize>
#include <QTimer>

#include <cstddef>
#include <functional>
#include <string>

namespace farview
{

/// What came within a time: counted, not promised.
struct ReceivedAmount {
    int frames = 0;
    std::size_t bytes = 0;
    qint64 milliseconds = 0;
};

/// "1920 × 1080 pixels, 60 pictures a second, 12.5 Mbit/s" in the user's language.
QString rateText(const DeviceTexts& texts, const QSize& picture, const ReceivedAmount& received);

/// What the user has to do so that all of the device's input can be used; empty when nothing.
QString inputHint(const DeviceTexts& texts, const LinkOptions& options);

/// The bar over a picture: the device's name, what is received, and what can be done. Counts while
/// it is seen, and tells once a second.
class PictureBar final : public QFrame
{
public:
    struct Actions {
        std::function<void(bool isFitted)> fit;
        std::function<void(bool isFull)> fillScreen;
        std::function<void(bool isShown)> showKeyboard; ///< that of the device's own screen
        std::function<void()> disconnect;
    };

    /// `texts` outlive it; `parent` owns it.
    PictureBar(const DeviceTexts& texts, const Actions& actions, QWidget* parent);

    void setDeviceName(const std::string& name) { mName->setText(QString::fromStdString(name)); }
    /// What the computer takes of the device's input.
    void setOptions(const LinkOptions& options);
    void closeKeyboard() { mKeyboard->setChecked(false); }
    void setFullScreen(bool isFull) { mFull->setChecked(isFull); }
    void setPictureSize(const QSize& size) { mPicture = size; }
    void countFrame(std::size_t bytes);
    /// Shows itself and takes the keyboard.
    void open();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QLabel* newLabel(const char* objectName);
    QPushButton* addButton(const char* objectName, const char* title);
    void tellRate();

    const DeviceTexts& mTexts;
    QHBoxLayout* mRow;
    QLabel* mName;
    QLabel* mRate;
    QPushButton* mFit;
    QPushButton* mFull;
    QPushButton* mKeyboard;
    QPushButton* mDisconnect;
    QLabel* mHint;
    QSize mPicture;
    ReceivedAmount mReceived;
    QElapsedTimer mSince;
    QTimer mEverySecond;
};

} // namespace farview
