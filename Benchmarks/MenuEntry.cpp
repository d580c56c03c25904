// The time from a device's announcement to its entry in the panel's menu, against a bare Avahi
// program that browses and resolves the same announcement at the same time.
//
// usage: menu-entry BUNDLE PRESENT [ROUNDS]       (on a network of its own, with PRESENT devices)

#include "Benchmarks/AvahiPrograms.h"
#include "Benchmarks/Figures.h"
#include "Benchmarks/WatchedPanel.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace
{

using Appearances = std::map<std::string, double>;

/// This program again, in another role.
class Peer
{
public:
    explicit Peer(const char* role)
    {
        mProcess.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        mProcess.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(role)});
        mProcess.waitForStarted();
    }
    ~Peer()
    {
        mProcess.closeWriteChannel();
        mProcess.waitForFinished();
    }

    void tell(const std::string& line) { mProcess.write((line + "\n").c_str()); }
    /// What it wrote: a time and a name in each line.
    const Appearances& appearances()
    {
        while (mProcess.canReadLine()) {
            const std::string line = mProcess.readLine().trimmed().toStdString();
            const auto space = line.find(' ');
            if (space != std::string::npos)
                mAppearances.try_emplace(line.substr(space + 1), std::atof(line.c_str()));
        }
        return mAppearances;
    }

private:
    QProcess mProcess;
    Appearances mAppearances;
};

template <typename Condition> bool runUntil(Condition condition, qint64 milliseconds)
{
    QElapsedTimer time;
    time.start();
    QTimer heartbeat; // looks at the condition again, also when nothing happens
    heartbeat.start(20);
    while (!condition()) {
        if (time.hasExpired(milliseconds))
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

void runFor(qint64 milliseconds)
{
    runUntil([] { return false; }, milliseconds);
}

class Network
{
public:
    explicit Network(const std::string& bundle) : mPanel(bundle) {}

    bool isReady()
    {
        return runUntil([this] { return mAnnouncer.appearances().contains("ready"); }, 20000);
    }

    void announce(const std::string& name) { mAnnouncer.tell(name); }

    /// Waits until both have shown the device; false when one of them takes too long.
    bool isShown(const std::string& name)
    {
        return runUntil(
            [&] {
                return mBare.appearances().contains(name) && mPanel.appearances().contains(name);
            },
            30000);
    }
    double bare(const std::string& name) { return mBare.appearances().at(name); }
    double panel(const std::string& name) { return mPanel.appearances().at(name); }

private:
    Peer mAnnouncer{"--announce"};
    Peer mBare{"--browse"};
    farview::WatchedPanel mPanel;
};

bool bePresent(Network& network, int count)
{
    for (int index = 1; index <= count; ++index) {
        network.announce("Present " + std::to_string(index));
        // A burst of all at once would measure the network's own limits.
        if (index % 50 == 0)
            runFor(300);
    }
    for (int index = 1; index <= count; ++index) {
        if (!network.isShown("Present " + std::to_string(index)))
            return false;
    }
    return true;
}

int measure(const std::string& bundle, int present, int rounds)
{
    Network network(bundle);
    farview::Comparison result{"announcement to menu entry, " + std::to_string(present) +
                                   " devices present",
                               "a bare Avahi program", "ms"};
    if (!network.isReady() || !bePresent(network, present)) {
        std::fprintf(stderr, "menu-entry: not every device is shown\n");
        return 1;
    }
    // The stacks repeat what they have announced for a while.
    runFor(present > 0 ? 15000 : 2000);
    for (int round = 1; round <= rounds; ++round) {
        runFor(1000);
        const std::string name = "Arrival " + std::to_string(round);
        const double announced = farview::microsecondsNow();
        network.announce(name);
        if (!network.isShown(name)) {
            std::fprintf(stderr, "menu-entry: \"%s\" is not shown\n", name.c_str());
            return 1;
        }
        result.yardstick.push_back((network.bare(name) - announced) / 1000);
        result.subject.push_back((network.panel(name) - announced) / 1000);
    }
    farview::printExcess(result, 60);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string role = argc > 1 ? argv[1] : "";
    if (role == "--browse")
        return farview::runBareBrowser();
    if (role == "--announce")
        return farview::runAnnouncer();
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s BUNDLE PRESENT [ROUNDS]\n", argv[0]);
        return 2;
    }
    QCoreApplication application(argc, argv);
    return measure(role, std::atoi(argv[2]), argc > 3 ? std::atoi(argv[3]) : 11);
}
