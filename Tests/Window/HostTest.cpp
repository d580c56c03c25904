#include "Tests/Support/WaitUntil.h"
#include "Tests/Window/HostFixture.h"

#include <QRegularExpression>

#include <csignal>

namespace
{

class RunningHost : public HostFixture
{
protected:
    void useBus()
    {
        bus = std::make_unique<PrivateBus>();
        set("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(bus->address()));
    }
    QString recordingPane()
    {
        return bundleAround(QStringLiteral(FARVIEW_RECORDING_MODULE), "RecordingPane");
    }
    /// Starts the host and waits until its pane is on show.
    std::unique_ptr<QProcess> startAndShow()
    {
        auto process = start({u"--pane"_qs, recordingPane()});
        EXPECT_TRUE(waitUntil([&] { return calls().ends_with("didSelect"); }))
            << calls() << process->readAllStandardError().toStdString();
        return process;
    }
    Result terminate(QProcess& process, int signal = SIGTERM)
    {
        ::kill(static_cast<pid_t>(process.processId()), signal);
        return end(process);
    }

    std::unique_ptr<PrivateBus> bus;
    static constexpr const char* wholeLife =
        "makePane initWithBundle loadMainView mainViewDidLoad willSelect didSelect willUnselect "
        "destroyed";
};

TEST_F(RunningHost, DrivesAPaneInTheStatedOrder)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        QFile::remove(path("calls"));
        const auto host = startAndShow();
        EXPECT_EQ(terminate(*host, signal).status, 0);
        EXPECT_EQ(calls(), wholeLife);
    }
}

TEST_F(RunningHost, ASmokeTestIsAWholeLifeWithTwoShowings)
{
    const Result result = run({u"--smoke-test"_qs, u"--pane"_qs, recordingPane()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(calls(), "makePane for a smoke test initWithBundle loadMainView mainViewDidLoad "
                       "willSelect didSelect willUnselect willSelect didSelect willUnselect "
                       "destroyed");
}

TEST_F(RunningHost, ASmokeTestOfTheRealPaneLeavesNoTrace)
{
    environment.remove(u"QT_QPA_PLATFORM"_qs);
    environment.remove(u"DISPLAY"_qs);
    const Result result = run({u"--smoke-test"_qs});
    EXPECT_EQ(result.status, 0) << result.errors;
    const QDir home(path("home"));
    for (const QString& entry :
         home.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        EXPECT_EQ(entry.toStdString(), ".cache") << "the toolkit's own, and nothing else";
}

TEST_F(RunningHost, ASmokeTestLeavesARunningPanelAlone)
{
    useBus();
    const auto host = startAndShow();
    const std::string before = calls();
    set("FARVIEW_TEST_CALLS", path("other-calls"));
    EXPECT_EQ(run({u"--smoke-test"_qs}).status, 0);
    EXPECT_EQ(calls(), before);
    EXPECT_EQ(terminate(*host).status, 0);
}

TEST_F(RunningHost, TheRealPaneKeepsItsDeviceListWhenItIsTerminated)
{
    // The pane starts it, and it would stay; names are cut at 15 characters.
    const OrphanCollector statusItems("FarviewStatusIt");
    const auto host = start({});
    const QString list = path("home/.local/share/Farview/SeenDevices.plist");
    // The preferences are written while the pane comes on show.
    const QString preferences = path("home/.config/farview/com.quillon.Farview.plist");
    EXPECT_TRUE(waitUntil([&] { return read(preferences).contains(u"showInMenuBar"_qs); }));
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_EQ(terminate(*host).status, 0);
    EXPECT_TRUE(read(list).contains(u"<array"_qs));
}

TEST_F(RunningHost, ASecondStartRaisesTheFirstWindowAndEnds)
{
    useBus();
    const auto first = startAndShow();
    const Result second = run({});
    EXPECT_EQ(second.status, 0) << second.errors;
    EXPECT_EQ(first->state(), QProcess::Running);
    EXPECT_EQ(terminate(*first).status, 0);
}

TEST_F(RunningHost, APaneThatWantsItIsStartedAnewInTheSameProcess)
{
    useBus();
    write(path("calls.anew"), u"now"_qs);
    const auto host = start({u"--pane"_qs, recordingPane()});
    const std::string twice = std::string(wholeLife) + " makePane initWithBundle loadMainView "
                                                       "mainViewDidLoad willSelect didSelect";
    EXPECT_TRUE(waitUntil([&] { return calls() == twice; }, std::chrono::seconds(20)))
        << calls() << host->readAllStandardError().toStdString();
    EXPECT_EQ(host->state(), QProcess::Running);
    EXPECT_EQ(run({}).status, 0) << "it has the session's window again";
    EXPECT_EQ(calls(), twice);
    EXPECT_EQ(QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(host->processId())),
              QFileInfo(QStringLiteral(FARVIEW_PREFERENCES)).canonicalFilePath());
    EXPECT_EQ(terminate(*host).status, 0);
}

TEST_F(RunningHost, ASecondStartHandsItsPaneOver)
{
    useBus();
    const auto first = startAndShow();
    const QString other = path("Other.prefPane");
    QDir().rename(path("Module.prefPane"), other);
    EXPECT_EQ(run({u"--pane"_qs, other}).status, 0);
    EXPECT_EQ(calls(), "makePane initWithBundle loadMainView mainViewDidLoad willSelect didSelect "
                       "makePane initWithBundle loadMainView mainViewDidLoad willUnselect "
                       "willSelect didSelect");
    EXPECT_EQ(terminate(*first).status, 0);
}

TEST_F(RunningHost, ABrokenPaneOfASecondStartIsReportedAndTheFirstGoesOn)
{
    useBus();
    const auto first = startAndShow();
    const std::string before = calls();
    const Result second = run({u"--pane"_qs, path("Nowhere.prefPane")});
    EXPECT_EQ(second.status, 3);
    EXPECT_NE(second.errors.find("There is no preference pane at"), std::string::npos);
    EXPECT_EQ(calls(), before);
    EXPECT_EQ(terminate(*first).status, 0);
}

TEST_F(RunningHost, AFirstWindowThatDoesNotAnswerIsReported)
{
    useBus();
    const auto first = startAndShow();
    const auto pid = static_cast<pid_t>(first->processId());
    ::kill(pid, SIGSTOP);
    const Result second = run({});
    ::kill(pid, SIGCONT);
    EXPECT_EQ(second.status, 12);
    EXPECT_NE(second.errors.find("does not answer"), std::string::npos);
    EXPECT_EQ(terminate(*first).status, 0);
}

TEST_F(RunningHost, OfManyStartsAtOnceOneStays)
{
    useBus();
    const QString pane = recordingPane();
    std::vector<std::unique_ptr<QProcess>> starts;
    for (int i = 0; i < 5; ++i)
        starts.push_back(start({u"--pane"_qs, pane}));
    const auto running = [&] {
        int count = 0;
        for (auto& each : starts) {
            each->waitForFinished(0);
            count += each->state() == QProcess::Running ? 1 : 0;
        }
        return count;
    };
    EXPECT_TRUE(waitUntil([&] { return running() == 1; }));
    EXPECT_EQ(calls(), "makePane initWithBundle loadMainView mainViewDidLoad willSelect didSelect");
    for (auto& each : starts) {
        if (each->state() == QProcess::Running) {
            EXPECT_EQ(terminate(*each).status, 0);
        }
        EXPECT_EQ(each->exitCode(), 0);
    }
}

TEST_F(RunningHost, AnotherLoginSessionHasAWindowOfItsOwn)
{
    useBus();
    const auto first = startAndShow();
    QFile::remove(path("calls"));
    set("XDG_SESSION_ID", u"c2"_qs);
    const auto second = startAndShow();
    EXPECT_EQ(second->state(), QProcess::Running);
    EXPECT_EQ(terminate(*second).status, 0);
    EXPECT_EQ(terminate(*first).status, 0);
}

TEST_F(RunningHost, ABusThatGoesAwayDoesNotEndIt)
{
    useBus();
    const auto host = startAndShow();
    bus->stop();
    runLoopFor(std::chrono::milliseconds(200));
    EXPECT_EQ(host->state(), QProcess::Running);
    EXPECT_EQ(terminate(*host).status, 0);
}

TEST_F(RunningHost, WithoutADisplayItSaysSo)
{
    environment.remove(u"QT_QPA_PLATFORM"_qs);
    environment.remove(u"DISPLAY"_qs);
    EXPECT_EQ(run({}).status, 13);
}

TEST_F(RunningHost, WrongUseIsExplained)
{
    EXPECT_EQ(run({u"--nonsense"_qs}).status, 2);
    EXPECT_EQ(run({u"word"_qs}).status, 2);
    EXPECT_EQ(run({u"--pane"_qs}).status, 2);
}

TEST_F(RunningHost, ListsThePanesOfUserComputerAndSystem)
{
    QDir().mkpath(path("home/.local/share/farview/PreferencePanes/Mine.prefPane"));
    QDir().mkpath(path("local/PreferencePanes/Ours.prefPane"));
    const Result result = run({u"--list"_qs});
    EXPECT_EQ(result.status, 0);
    const auto mine = result.output.find("Mine.prefPane");
    const auto ours = result.output.find("Ours.prefPane");
    const auto systems = result.output.find("Farview Preferences.prefPane");
    EXPECT_TRUE(mine < ours && ours < systems && systems != std::string::npos) << result.output;
}

TEST_F(RunningHost, AUsersPaneIsPreferredToTheSystems)
{
    const QString pane = recordingPane();
    const QString panes = path("home/.local/share/farview/PreferencePanes");
    QDir().mkpath(panes);
    ASSERT_TRUE(QDir().rename(pane, panes + u"/Farview Preferences.prefPane"_qs));
    EXPECT_EQ(run({u"--smoke-test"_qs}).status, 0);
    EXPECT_NE(calls().find("didSelect"), std::string::npos);
}

TEST_F(RunningHost, EveryExitStatusIsExplainedInHelpAndManual)
{
    const std::string help = run({u"--help"_qs}).output;
    const QString manual = read(QStringLiteral(FARVIEW_SOURCE_DIR "/docs/host.md"));
    for (const int status : {0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}) {
        const auto line = QString(u"\n"_qs + QString::number(status).rightJustified(4) + u"  "_qs);
        EXPECT_NE(help.find(line.toStdString()), std::string::npos) << status;
        EXPECT_TRUE(manual.contains(QStringLiteral("| %1 |").arg(status))) << status;
    }
}

TEST_F(RunningHost, TheModuleOffersNothingButItsEntryPoints)
{
    QProcess nm;
    nm.start(u"nm"_qs,
             {u"-D"_qs, u"--defined-only"_qs,
              QStringLiteral(FARVIEW_PANE_BUNDLE "/Contents/Linux/FarviewPreferences.so")});
    ASSERT_TRUE(nm.waitForFinished(20'000));
    // A capital letter marks what other modules can see.
    QStringList visible;
    for (const QString& line : QString::fromUtf8(nm.readAllStandardOutput()).split(u'\n')) {
        const QStringList parts = line.split(u' ');
        if (parts.size() == 3 && (parts[1].at(0).isUpper() || parts[1] == u"u"))
            visible += parts[2];
    }
    visible.sort();
    EXPECT_EQ(visible.join(u' ').toStdString(), "qt_plugin_instance qt_plugin_query_metadata_v2");
}

} // namespace
