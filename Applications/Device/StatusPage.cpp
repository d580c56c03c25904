#include "Applications/Device/StatusPage.h"

#include "Applications/Device/PageParts.h"
#include "Common/FVEConstants.h"

namespace farview
{

namespace
{

constexpr double headlineScale = 1.6;

void setText(QLabel& label, const QString& text)
{
    label.setText(text);
    label.setVisible(!text.isEmpty());
}

QString useText(const DeviceTexts& texts, const DeviceStatus& status)
{
    if (!status.usedBy)
        return texts.text(
            "Not in use. Choose this device in Farview Preferences on another computer.");
    if (status.isPictureAgreed)
        return texts.text("Connected to the computer at %@, waiting for its picture. If none "
                          "comes, Farview Preferences there says why.",
                          {*status.usedBy});
    return texts.text("Connected to the computer at %@. Its version of Farview sends no pictures.",
                      {*status.usedBy});
}

QString optionsText(const DeviceTexts& texts, const DeviceStatus& status)
{
    if (!status.options)
        return {};
    const auto line = [&](const QString& what, bool on) {
        return texts.text(on ? "%@: on" : "%@: off", {what.toStdString()});
    };
    return line(texts.text("Touch"), status.options->touch) + u'\n' +
           line(texts.text("Retina resolutions"), status.options->retina) + u'\n' +
           line(texts.text("HiDPI resolutions"), status.options->hiDPI) + u'\n' +
           line(texts.text("Windows move back"), status.options->windowsMoveBack) + u'\n' +
           line(texts.text("Keys and text"), status.options->typing);
}

QString verdictText(const DeviceTexts& texts, HostPicture::Verdict verdict)
{
    if (verdict == HostPicture::Verdict::good)
        return {};
    return verdict == HostPicture::Verdict::tooLarge
               ? texts.text("The last computer was sent away: its picture is too large for this "
                            "device.")
               : texts.text("The last computer was sent away: its picture cannot be read.");
}

QString troubleText(const DeviceTexts& texts, const DeviceStatus& status)
{
    QStringList lines;
    if (!status.trouble.empty())
        lines += texts.text("This device cannot be announced: %@", {status.trouble});
    if (!status.keyTrouble.empty())
        lines += texts.text(
            "No computer is let in: this device's own key cannot be used. Remove "
            "com.quillon.FarviewDevice.pem from the folder of Farview's settings, usually "
            ".config/farview, and confirm every computer once more. If there is no such file, that "
            "folder cannot be written to.");
    if (status.port != 0 && status.port != kMainDataTrafficPort)
        lines += texts.text("Computers find this device by its name only: connecting by address "
                            "needs port %@.",
                            {std::to_string(kMainDataTrafficPort)});
    lines += verdictText(texts, status.lastVerdict);
    lines.removeAll(QString());
    return lines.join(u'\n');
}

} // namespace

StatusPage::StatusPage(const DeviceTexts& texts, const std::function<void()>& listComputers)
    : mTexts(texts)
{
    auto* layout = new QVBoxLayout(this);
    mName = plainLabel(*layout, "deviceName");
    mUse = plainLabel(*layout, "deviceUse");
    mOptions = plainLabel(*layout, "deviceOptions");
    mTrouble = plainLabel(*layout, "deviceTrouble");
    layout->addStretch();
    auto* known = fingerButton(*layout, "knownComputers", texts.text("&Known Computers…"));
    layout->setAlignment(known, Qt::AlignLeft);
    connect(known, &QPushButton::clicked, this, listComputers);
    QFont large = mName->font();
    large.setPointSizeF(large.pointSizeF() * headlineScale);
    mName->setFont(large);
}

void StatusPage::showStatus(const DeviceStatus& status)
{
    setText(*mName, status.announcedName.empty() ? mTexts.text("Not announced yet")
                                                 : QString::fromStdString(status.announcedName));
    setText(*mUse, useText(mTexts, status));
    setText(*mOptions, optionsText(mTexts, status));
    setText(*mTrouble, troubleText(mTexts, status));
}

} // namespace farview
