#include "Applications/Device/PairingPage.h"

#include "Applications/Device/PageParts.h"
#include "Common/Rules/PairingReport.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace farview
{

namespace
{

constexpr double questionScale = 1.6;
constexpr int widestButton = 480;   // points
constexpr int buttonHeight = 64;    // points
constexpr int lowestDigits = 48;    // points
constexpr double roomAround = 0.05; // of the width

/// One line in the largest letters that there is room for.
class LargestLine final : public QLabel
{
public:
    LargestLine()
    {
        setTextFormat(Qt::PlainText);
        setMinimumHeight(lowestDigits);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setFont(largestFont());
        // Groups of digits keep their order where one reads from right to left.
        painter.setLayoutDirection(Qt::LeftToRight);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }

private:
    QFont largestFont() const
    {
        QFont large = font();
        large.setPixelSize(height());
        const QFontMetricsF metrics(large);
        const double room = width() * (1 - 2 * roomAround);
        const double part =
            std::min({1.0, room / metrics.horizontalAdvance(text()), height() / metrics.height()});
        large.setPixelSize(std::max(1, static_cast<int>(height() * part)));
        return large;
    }
};

/// "4 8 2 9 1 3", which no voice reads as a number.
QString singly(const std::string& digits)
{
    return QString::fromStdString(digits).split(QString(), Qt::SkipEmptyParts).join(QChar::Space);
}

void enlarge(QWidget& widget)
{
    QFont font = widget.font();
    font.setPointSizeF(font.pointSizeF() * questionScale);
    widget.setFont(font);
}

} // namespace

PairingPage::PairingPage(const DeviceTexts& texts, Actions actions)
    : mTexts(texts), mActions(std::move(actions)), mDigits(new LargestLine)
{
    auto* layout = new QVBoxLayout(this);
    mDigits->setObjectName(QStringLiteral("pairingDigits"));
    mDigits->setFocusPolicy(Qt::TabFocus);
    layout->addWidget(mDigits, 1);
    mQuestion = plainLabel(*layout, "pairingQuestion");
    mQuestion->setAlignment(Qt::AlignCenter);
    enlarge(*mQuestion);
    auto* middle = new QHBoxLayout;
    auto* buttons = new QVBoxLayout;
    layout->addLayout(middle);
    middle->addStretch(1);
    middle->addLayout(buttons, widestButton); // the rest is shared by both sides
    middle->addStretch(1);
    mYes = fingerButton(*buttons, "pairingYes", texts.text("&Yes, the Same"));
    mNo = fingerButton(*buttons, "pairingNo", {});
    for (QPushButton* each : {mYes, mNo}) {
        enlarge(*each);
        each->setMinimumHeight(buttonHeight);
        each->setMaximumWidth(widestButton);
    }
    connect(mYes, &QPushButton::clicked, this, [this] { mActions.confirm(mComputer.digits); });
    connect(mNo, &QPushButton::clicked, this, [this] { mActions.refuse(); });
    mPause.setSingleShot(true);
    mPause.setInterval(pause);
    connect(&mPause, &QTimer::timeout, this, [this] { mYes->setEnabled(true); });
}

bool PairingPage::ask(const ComputerToConfirm& computer)
{
    if (computer == mComputer)
        return false;
    const bool isNew = computer.digits != mComputer.digits;
    mComputer = computer;
    mQuestion->setText(computer.isConfirmedHere
                           ? mTexts.text("Now confirm it at the computer, too.")
                           : mTexts.text("A computer at %@ wants to use this screen. Does it show "
                                         "the same digits?",
                                         {computer.address}));
    mDigits->setText(QString::fromStdString(groupedDigits(computer.digits)));
    mDigits->setAccessibleName(singly(computer.digits));
    mDigits->setAccessibleDescription(mQuestion->text());
    mYes->setVisible(!computer.isConfirmedHere);
    mNo->setText(mTexts.text(computer.isConfirmedHere ? "&Cancel" : "&No"));
    mDigits->setFocus();
    if (isNew)
        delayYes();
    return isNew;
}

void PairingPage::delayYes()
{
    mYes->setEnabled(false);
    mPause.start();
}

} // namespace farview
