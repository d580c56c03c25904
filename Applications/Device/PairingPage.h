#pragma once

#include "Applications/Device/DeviceServer.h"
#include "Applications/Device/DeviceTexts.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <functional>

namespace farview
{

/// Asks whether a computer may use the device: shows the digits as large as there is room, to be
/// read from across a room, and takes the answer.
class PairingPage final : public QWidget
{
public:
    struct Actions {
        /// The computer shows these digits, too.
        std::function<void(const std::string& digits)> confirm;
        std::function<void()> refuse;
    };

    /// How long a new question cannot be answered with yes: a touch that was meant for what was
    /// there before says nothing.
    static constexpr std::chrono::milliseconds pause{700};

    /// `texts` outlive it.
    PairingPage(const DeviceTexts& texts, Actions actions);

    /// Whether it is another question than before. Each takes the keyboard, but to neither of the
    /// answers.
    bool ask(const ComputerToConfirm& computer);

private:
    void delayYes();

    const DeviceTexts& mTexts;
    Actions mActions;
    QLabel* mDigits;
    QLabel* mQuestion;
    QPushButton* mYes;
    QPushButton* mNo;
    ComputerToConfirm mComputer;
    QTimer mPause;
};

} // namespace farview
