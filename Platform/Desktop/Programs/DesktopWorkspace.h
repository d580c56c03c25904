#pragma once

#include "Platform/Workspace.h"

#include <QObject>
#include <QString>

#include <memory>

namespace farview
{

class ApplicationLauncher;
class Bundles;
class Log;
class RunLoop;
class SessionBus;

/// Starts applications and opens documents: in the desktop's portal, else with `xdg-open`; a pane's
/// bundle in `farview-preferences`. Never waits for what it starts. Main thread only.
class DesktopWorkspace final : public QObject, public Workspace
{
    Q_OBJECT

public:
    /// The references must outlive this.
    DesktopWorkspace(SessionBus& bus, Bundles& bundles, const RunLoop& clock, Log& log);
    ~DesktopWorkspace() override;

    /// No option changes anything here: every launch is asynchronous, activates nothing and adds
    /// to no list.
    bool launchApplicationAtURL(const URL& url, unsigned options) override;
    bool openURL(const URL& url) override;

private:
    bool openInPortal(const URL& url);
    bool openPane(const QString& path);
    bool openWithDesktopOpener(const QString& address);

    SessionBus& mBus;
    std::unique_ptr<ApplicationLauncher> mLauncher;
};

} // namespace farview
