#pragma once

#include "Applications/Preferences/HostWindow.h"
#include "Applications/Preferences/PaneLoader.h"

#include <map>
#include <memory>

/// Drives panes through their lives: each is loaded once, selected when it comes on show, and
/// unselected when another takes its place or the window closes.
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

private:
    LoadedPane* paneAt(const QString& bundlePath, HostError& error);
    void select(LoadedPane& pane);
    void followActivity(Qt::ApplicationState state);

    PaneLoader mLoader;
    HostWindow mWindow;
    std::map<QString, std::unique_ptr<LoadedPane>> mPanes;
    LoadedPane* mSelected = nullptr;
    bool mActive = true;
};
