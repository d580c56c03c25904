#pragma once

#include "Applications/Device/DeviceServer.h"
#include "Applications/Device/DeviceTexts.h"

#include <QLabel>
#include <QWidget>

#include <functional>

namespace farview
{

/// What the device is doing: its name, who uses it and how, and what is in the way.
class StatusPage final : public QWidget
{
public:
    /// `texts` outlive it. `listComputers` is called when the user wants to see those that may use
    /// the device.
    StatusPage(const DeviceTexts& texts, const std::function<void()>& listComputers);

    void showStatus(const DeviceStatus& status);

private:
    const DeviceTexts& mTexts;
    QLabel* mName;
    QLabel* mUse;
    QLabel* mOptions;
    QLabel* mTrouble;
};

} // namespace farview
