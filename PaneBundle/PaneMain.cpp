#include "Applications/Preferences/PaneInterface.h"
#include "Controls/Qt/AlertBoxes.h"
#include "Controls/Qt/Forms/BundleInterfaceLoader.h"
#include "Controls/Qt/Forms/InterfaceFile.h"
#include "PaneBundle/TrayHint.h"
#include "Platform/Bundle.h"
#include "Platform/Desktop/DesktopPlatform.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Workspace.h"
#include "Source/FVEPreferencePane.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <optional>

namespace
{

using farview::Platform;

/// The application is the host's; the pane only asks it to come to the front.
class HostApplication final : public farview::Application
{
public:
    void setView(QWidget* view) { mView = view; }
    bool activateWithOptions(unsigned /*options*/) override
    {
        if (!mView || !mView->window()->isVisible())
            return false;
        mView->window()->raise();
        mView->window()->activateWindow();
        return true;
    }
    bool reopen() override
    {
        // Not now: this may be the answer to a click in a window that goes.
        QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(exitToStartAnew); });
        return true;
    }

private:
    QPointer<QWidget> mView;
};

class FarviewPane final : public HostedPane
{
public:
    explicit FarviewPane(bool smokeTest);

    bool initWithBundle(const QString& bundlePath, QString* error) override;
    QWidget* loadMainView(QString* error) override;
    void mainViewDidLoad() override { mPane->mainViewDidLoad(); }
    void willSelect() override { mPane->willSelect(); }
    void didSelect() override;
    void willUnselect() override { mPane->willUnselect(); }
    void applicationDidBecomeActive() override;
    void applicationDidResignActive() override;

private:
    Platform& platform() { return mDesktop.platform(); }
    void hintAtTray();

    farview::DesktopPlatform mDesktop;
    std::shared_ptr<HostApplication> mApplication = std::make_shared<HostApplication>();
    Platform::Scope mInstalled;
    std::shared_ptr<farview::Bundle> mBundle;
    std::unique_ptr<QWidget> mView;
    std::optional<farview::TrayHint> mTrayHint;
    std::shared_ptr<FVEPreferencePane> mPane; // goes before its view and its platform
};

FarviewPane::FarviewPane(bool smokeTest)
    : mDesktop({.isSmokeTest = smokeTest}), mInstalled(mDesktop.platform())
{
    platform().application = mApplication.get();
}

bool FarviewPane::initWithBundle(const QString& bundlePath, QString* error)
{
    mBundle = platform().bundles->bundleWithPath(bundlePath.toStdString());
    mPane = std::make_shared<FVEPreferencePane>(platform());
    if (mPane->initWithBundle(mBundle)) {
        mPane->setInterfaceLoader(std::make_shared<farview::BundleInterfaceLoader>(mBundle));
        mPane->setAlertPresenter(std::make_shared<farview::AlertBoxes>());
        return true;
    }
    *error = QStringLiteral("it cannot be opened.");
    return false;
}

QWidget* FarviewPane::loadMainView(QString* error)
{
    std::string reason;
    mView = farview::InterfaceFile(*mBundle, mPane->mainNibName()).load(mPane, reason);
    *error = QString::fromStdString(reason);
    mApplication->setView(mView.get());
    return mView.get();
}

void FarviewPane::didSelect()
{
    mPane->didSelect();
    // The toolkit waits for answers when it is asked about trays: once the window is there.
    QTimer::singleShot(0, mView.get(), [this] { hintAtTray(); });
}

void FarviewPane::hintAtTray()
{
    if (mTrayHint)
        mTrayHint->refresh();
    else
        mTrayHint.emplace(mDesktop.sessionBus(), mPane->menuExtraCheckbox(),
                          mBundle->localizedString("This desktop has no place for status icons. "
                                                   "The icon appears as soon as it has one.",
                                                   "", ""));
}

void FarviewPane::applicationDidBecomeActive()
{
    platform().distributedNotificationCenter->setSuspended(false);
    platform().notificationCenter->postNotificationName(
        farview::applicationDidBecomeActiveNotification, mApplication.get(), {});
}

void FarviewPane::applicationDidResignActive()
{
    platform().distributedNotificationCenter->setSuspended(true);
}

class FarviewPaneFactory final : public QObject, public PaneFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID FARVIEW_PANE_INTERFACE_ID)
    Q_INTERFACES(PaneFactory)

public:
    std::unique_ptr<HostedPane> makePane(const QString& principalClass, bool smokeTest) override
    {
        if (principalClass != QStringLiteral("FVEPreferencePane"))
            return nullptr;
        return std::make_unique<FarviewPane>(smokeTest);
    }
};

} // namespace

#include "PaneMain.moc"
