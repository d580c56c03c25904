#include "Applications/Preferences/PaneInterface.h"
#include "Controls/Qt/Forms/InterfaceFile.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Rights/DesktopAccessibility.h"
#include "Platform/Desktop/Rights/DesktopAccessibilitySwitch.h"
#include "Platform/Posix/PosixBundle.h"
#include "Platform/Posix/StandardErrorLog.h"
#include "Source/AccessibilityPane.h"

#include <QWidget>

namespace
{

/// In a smoke test nobody is asked and nothing is changed.
class NoSwitch final : public farview::AccessibilitySwitch
{
public:
    farview::Subscription observe(Observer /*observer*/) override { return {}; }
    void set(bool /*on*/, Done /*done*/) override {}
};

class UniversalAccessPane final : public HostedPane
{
public:
    explicit UniversalAccessPane(bool smokeTest) : mIsSmokeTest(smokeTest) {}

    bool initWithBundle(const QString& bundlePath, QString* error) override;
    QWidget* loadMainView(QString* error) override;
    void mainViewDidLoad() override {}
    void willSelect() override { mPane->willSelect(); }
    void didSelect() override {}
    void willUnselect() override { mPane->willUnselect(); }
    void applicationDidBecomeActive() override {}
    void applicationDidResignActive() override {}

private:
    bool mIsSmokeTest;
    farview::StandardErrorLog mLog{"UniversalAccessPref"};
    farview::PosixBundles mBundles{farview::EnvironmentUse::honoured, mLog};
    farview::SessionBus mBus{mLog};
    farview::DesktopAccessibility mAccessibility{mBus};
    farview::DesktopAccessibilitySwitch mSwitch{mBus};
    NoSwitch mNoSwitch;
    std::shared_ptr<farview::Bundle> mBundle;
    std::unique_ptr<QWidget> mView;
    std::shared_ptr<farview::AccessibilityPane> mPane; // goes before its view and its platform
};

bool UniversalAccessPane::initWithBundle(const QString& bundlePath, QString* error)
{
    mBundle = mBundles.bundleWithPath(bundlePath.toStdString());
    farview::AccessibilitySwitch& chosen = mSwitch;
    mPane = std::make_shared<farview::AccessibilityPane>(
        mAccessibility, mIsSmokeTest ? mNoSwitch : chosen, mBundle);
    if (!mBundle)
        *error = QStringLiteral("it cannot be opened.");
    return mBundle != nullptr;
}

QWidget* UniversalAccessPane::loadMainView(QString* error)
{
    std::string reason;
    mView = farview::InterfaceFile(*mBundle, "UniversalAccessPref").load(mPane, reason);
    *error = QString::fromStdString(reason);
    return mView.get();
}

class UniversalAccessFactory final : public QObject, public PaneFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID FARVIEW_PANE_INTERFACE_ID)
    Q_INTERFACES(PaneFactory)

public:
    std::unique_ptr<HostedPane> makePane(const QString& principalClass, bool smokeTest) override
    {
        if (principalClass != QStringLiteral("UniversalAccessPref"))
            return nullptr;
        return std::make_unique<UniversalAccessPane>(smokeTest);
    }
};

} // namespace

#include "UniversalAccessMain.moc"
