#include "Applications/Device/KnownComputersPage.h"

#include "Applications/Device/PageParts.h"
#include "Common/Rules/PairingReport.h"

#include <QDateTime>
#include <QLocale>
#include <QScrollBar>
#include <QScroller>
#include <QShowEvent>

#include <algorithm>
#include <utility>

namespace farview
{

namespace
{

/// The part of a key that people compare.
constexpr std::size_t shownDigits = 8;
constexpr int lowestList = 96; // points: about one row

std::string localDate(Date date)
{
    const auto moment = QDateTime::fromSecsSinceEpoch(static_cast<qint64>(date.secondsSince1970));
    return QLocale().toString(moment.date(), QLocale::ShortFormat).toStdString();
}

/// Its groups keep their order where one reads from right to left.
std::string shownKey(const std::string& key)
{
    return "\u2066" + groupedDigits(key.substr(0, shownDigits)) + "\u2069";
}

QString description(const DeviceTexts& texts, const PairedPeer& computer)
{
    QStringList lines{QString::fromStdString(computer.name),
                      texts.text("Key: %@", {shownKey(computer.key)})};
    if (mayBeTrue(computer.since))
        lines += texts.text("Confirmed on %@", {localDate(computer.since)});
    if (mayBeTrue(computer.lastUsed))
        lines += texts.text("Last used on %@", {localDate(computer.lastUsed)});
    return lines.join(u'\n');
}

} // namespace

KnownComputersPage::KnownComputersPage(const DeviceTexts& texts, Actions actions)
    : mTexts(texts), mActions(std::move(actions)), mList(new QScrollArea)
{
    auto* layout = new QVBoxLayout(this);
    auto* title = plainLabel(*layout, "knownTitle");
    title->setText(texts.text("Computers That May Use This Device"));
    mNote = plainLabel(*layout, "knownNote");
    mList->setWidgetResizable(true);
    mList->setFocusPolicy(Qt::NoFocus); // its buttons are reached by the keyboard
    mList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScroller::grabGesture(mList->viewport());
    mList->setMinimumHeight(lowestList);
    layout->addWidget(mList, 1);
    mBack = fingerButton(*layout, "knownBack", texts.text("&Back"));
    layout->setAlignment(mBack, Qt::AlignLeft);
    connect(mBack, &QPushButton::clicked, this, mActions.back);
    makeRows();
}

void KnownComputersPage::showComputers(const std::vector<PairedPeer>& computers)
{
    if (computers == mComputers)
        return;
    const auto focused = buttons().indexOf(qobject_cast<QPushButton*>(focusWidget()));
    mComputers = computers;
    makeRows();
    if (focused >= 0)
        (buttons() << mBack)[std::min(focused, buttons().size())]->setFocus();
}

QList<QPushButton*> KnownComputersPage::buttons() const
{
    return mList->widget()->findChildren<QPushButton*>();
}

void KnownComputersPage::makeRows()
{
    // It may hold the button that is being pressed.
    if (QWidget* before = mList->takeWidget())
        before->deleteLater();
    auto* rows = new QWidget;
    auto* layout = new QVBoxLayout(rows);
    for (const PairedPeer& computer : mComputers)
        layout->addLayout(makeRow(computer));
    if (mComputers.empty())
        plainLabel(*layout, "knownNobody")
            ->setText(mTexts.text("None yet. Choose this device in Farview Preferences on a "
                                  "computer, and compare the digits that both show."));
    layout->addStretch();
    mList->setWidget(rows);
    mList->setMinimumWidth(rows->minimumSizeHint().width() + 2 * mList->frameWidth() +
                           mList->verticalScrollBar()->sizeHint().width());
}

QLayout* KnownComputersPage::makeRow(const PairedPeer& computer)
{
    auto* row = new QHBoxLayout;
    auto* label = plainLabel(*row, "knownComputer");
    label->setText(description(mTexts, computer));
    row->setStretchFactor(label, 1);
    auto* button = fingerButton(*row, "knownRemove", mTexts.text("Remove"));
    button->setAccessibleDescription(label->text());
    connect(button, &QPushButton::clicked, this, [this, computer] { remove(computer); });
    return row;
}

void KnownComputersPage::remove(const PairedPeer& computer)
{
    mNote->setText(mTexts.text("The computer at %@ was removed. It may come back only after the "
                               "digits were compared again.",
                               {computer.name}));
    mNote->show();
    mActions.forget(computer.key);
}

void KnownComputersPage::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return;
    mNote->hide();
    mBack->setFocus();
}

} // namespace farview
