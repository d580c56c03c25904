#include "Applications/Device/DeviceCommands.h"

#include "Applications/CommandLine.h"
#include "Common/FVEDistributedNotifications.h"
#include "Common/PairedPeers.h"
#include "Common/Rules/PairingReport.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Posix/Settings/FilePreferences.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Platform/RunLoop.h"

#include <QCoreApplication>
#include <QDateTime>

#include <cstdio>
#include <memory>
#include <set>
#include <unistd.h>
#include <vector>

namespace farview
{

namespace
{

constexpr const char* programName = "farview-device";
constexpr Duration longestWait{3};
constexpr unsigned atOnce = DistributedNotificationCenter::deliverImmediately |
                            DistributedNotificationCenter::postToAllSessions;
constexpr std::size_t shownDigits = 8;
constexpr std::size_t longestName = 64;

void end(int status, const QString& words) { QCoreApplication::exit(print({status, words})); }

std::string localDate(Date date)
{
    if (!mayBeTrue(date))
        return "?";
    return QDateTime::fromSecsSinceEpoch(static_cast<qint64>(date.secondsSince1970))
        .date()
        .toString(Qt::ISODate)
        .toStdString();
}

std::string line(const PairedPeer& computer)
{
    return groupedDigits(computer.key.substr(0, shownDigits)) + "  confirmed " +
           localDate(computer.since) + "  last used " + localDate(computer.lastUsed) + "  " +
           printableText(computer.name, longestName);
}

std::set<std::string> keysThatBeginWith(const std::string& beginning,
                                        const std::vector<PairedPeer>& computers)
{
    std::set<std::string> keys;
    for (const PairedPeer& each : computers) {
        if (each.key.starts_with(beginning))
            keys.insert(each.key);
    }
    return keys;
}

} // namespace

int acceptDigits(const std::string& digits)
{
    DesktopPlatform desktop({});
    const auto life = std::make_shared<int>();
    auto& center = *desktop.platform().distributedNotificationCenter;
    const auto noBus = [] { end(kNoSessionBus, u"There is no session bus"_qs); };
    QObject::connect(&desktop.sessionBus(), &SessionBus::disconnected, noBus);
    const auto hear = [digits](const Notification& answer) {
        const std::string* accepted = answer.text(kDigitsKey);
        if (accepted && *accepted == digits)
            end(0, u"Accepted; now confirm at the computer, too"_qs);
    };
    center.addObserver(life, hear, kComputerAccepted, "");
    center.postNotificationName(kAcceptComputer, "", {{kDigitsKey, digits}}, atOnce);
    desktop.platform().runLoop->performAfterDelay(longestWait, life, [&] {
        desktop.sessionBus().isConnected() ? end(1, u"No device here shows these digits"_qs)
                                           : noBus();
    });
    return QCoreApplication::exec();
}

int listKnownComputers()
{
    StandardErrorLog log(programName, STDERR_FILENO);
    FilePreferences preferences(PreferencesLocations(EnvironmentUse::honoured), log);
    for (const PairedPeer& each : PairedPeers(preferences, PairedPeers::computers).all())
        std::printf("%s\n", line(each).c_str());
    return 0;
}

int forgetComputer(const std::string& keyBeginning)
{
    DesktopPlatform desktop({});
    FilePreferences preferences(PreferencesLocations(EnvironmentUse::honoured),
                                *desktop.platform().log);
    PairedPeers computers(preferences, PairedPeers::computers);
    const auto keys = keysThatBeginWith(keyBeginning, computers.all());
    if (keys.size() != 1)
        return print({1, keys.empty() ? u"No known computer has a key that begins so"_qs
                                      : u"The keys of several computers begin so"_qs});
    computers.forget(*keys.begin());
    if (!preferences.appSynchronize(PairedPeers::computers))
        return print({1, u"That cannot be stored"_qs});
    desktop.platform().distributedNotificationCenter->postNotificationName(kPairedDevicesDidChange,
                                                                           "", {}, atOnce);
    // What is posted has left when the bus answers a later question.
    desktop.sessionBus().askForOwner({}, qApp, [](const QString&) { end(0, u"Forgotten"_qs); });
    return QCoreApplication::exec();
}

} // namespace farview
