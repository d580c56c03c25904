#pragma once

#include "Applications/Preferences/HostWindow.h"
#include "Applications/Preferences/PaneLoader.h"

#include <map>
#include <memory>
#include <vector>

/// Drives panes through their lives: each is loaded once, selected when it comes on show, and
/// unselected when another takes its place or the window closes. From a pane that was opened over
/// another one there is a way back.
class PreferencesHost : public QObject
{
    Q_OBJECT

public:
    explicit PreferencesHost(PaneLoader loader);
    ~PreferencesHost() override;

    /// Shows the pane of that bundle. When it cannot be loaded, the one on show stays, the window
    /// (when there is one) says why, and so does the result.
    HostError open(const QString& bundlePath);
    /// Takes the pane off the window, as closing the window does.
    void unselect();

    HostWindow& window() { return mWindow; }
    const LoadedPane* selected() const { return mSelected; }

signals:
    /// A pane is loaded and comes on show next.
    void showing();

private:
    LoadedPane* paneAt(const QString& bundlePath, HostError& error);
    void select(LoadedPane& pane);
    void goBack();
    void close();
    void followActivity(Qt::ApplicationState state);

    PaneLoader mLoader;
    HostWindow mWindow;
    std::map<QString, std::unique_ptr<LoadedPane>> mPanes;
    LoadedPane* mSelected = nullptr;
    std::vector<LoadedPane*> mEarlier; ///< the way back, each pane once, the latest last
    bool mActive = true;
};
