#include "Applications/Preferences/PaneInterface.h"

#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QTimer>

namespace
{

/// Writes each call into the file that the environment names.
void note(const char* call)
{
    QFile file(qEnvironmentVariable("FARVIEW_TEST_CALLS"));
    if (file.open(QIODevice::Append))
        file.write(QByteArray(call) + "\n");
}

class RecordingPane final : public HostedPane
{
public:
    explicit RecordingPane(bool refuses) : mRefuses(refuses) {}
    ~RecordingPane() override { note("destroyed"); }

    bool initWithBundle(const QString& /*bundlePath*/, QString* error) override
    {
        note("initWithBundle");
        *error = mRefuses ? QStringLiteral("it does not like it.") : QString();
        return !mRefuses;
    }
    QWidget* loadMainView(QString* /*error*/) override
    {
        note("loadMainView");
        mView = std::make_unique<QLabel>(QStringLiteral("A recording pane"));
        return mView.get();
    }
    void mainViewDidLoad() override { note("mainViewDidLoad"); }
    void willSelect() override { note("willSelect"); }
    void didSelect() override
    {
        note(mView->isVisible() ? "didSelect" : "didSelect unseen");
        // Once, when a test left word.
        if (QFile::remove(qEnvironmentVariable("FARVIEW_TEST_CALLS") + QStringLiteral(".anew")))
            QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(exitToStartAnew); });
    }
    void willUnselect() override
    {
        note(mView->isVisible() ? "willUnselect" : "willUnselect unseen");
    }
    void applicationDidBecomeActive() override { note("active"); }
    void applicationDidResignActive() override { note("inactive"); }

private:
    bool mRefuses;
    std::unique_ptr<QLabel> mView;
};

class RecordingFactory final : public QObject, public PaneFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID FARVIEW_PANE_INTERFACE_ID)
    Q_INTERFACES(PaneFactory)

public:
    std::unique_ptr<HostedPane> makePane(const QString& principalClass, bool smokeTest) override
    {
        note(smokeTest ? "makePane for a smoke test" : "makePane");
        if (principalClass != u"RecordingPane" && principalClass != u"RefusingPane")
            return nullptr;
        return std::make_unique<RecordingPane>(principalClass == u"RefusingPane");
    }
};

} // namespace

#include "RecordingPane.moc"
