#pragma once

#include "Applications/Device/DeviceTexts.h"
#include "Common/PairedPeers.h"

#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace farview
{

/// The computers that may use the device without a question; each can be taken off the list.
class KnownComputersPage final : public QWidget
{
public:
    struct Actions {
        std::function<void(const std::string& key)> forget;
        std::function<void()> back;
    };

    /// `texts` outlive it.
    KnownComputersPage(const DeviceTexts& texts, Actions actions);

    void showComputers(const std::vector<PairedPeer>& computers);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QList<QPushButton*> buttons() const;
    void makeRows();
    QLayout* makeRow(const PairedPeer& computer);
    void remove(const PairedPeer& computer);

    const DeviceTexts& mTexts;
    Actions mActions;
    std::vector<PairedPeer> mComputers;
    QLabel* mNote;
    QScrollArea* mList;
    QPushButton* mBack;
};

} // namespace farview
