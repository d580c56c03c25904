#pragma once

#include "Applications/Device/DeviceServer.h"

#include <QLabel>
#include <QWidget>

#include <functional>

namespace farview
{

/// The device's small window: its name, whether and by whom it is used, what that host wants, and
/// what is wrong. Closing it ends the program.
class DeviceWindow final : public QWidget
{
public:
    /// `closed` is called when the user closes the window.
    explicit DeviceWindow(std::function<void()> closed);

    void showStatus(const DeviceStatus& status);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::function<void()> mClosed;
    QLabel* mName;
    QLabel* mUse;
    QLabel* mOptions;
    QLabel* mTrouble;
};

} // namespace farview
