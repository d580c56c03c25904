#include "Applications/Preferences/PreferencesHost.h"

#include <QGuiApplication>

#include <utility>

PreferencesHost::PreferencesHost(PaneLoader loader) : mLoader(loader)
{
    connect(&mWindow, &HostWindow::closing, this, &PreferencesHost::close);
    connect(&mWindow, &HostWindow::goingBack, this, &PreferencesHost::goBack);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            &PreferencesHost::followActivity);
}

PreferencesHost::~PreferencesHost() { unselect(); }

HostError PreferencesHost::open(const QString& bundlePath)
{
    HostError error;
    LoadedPane* pane = paneAt(bundlePath, error);
    if (pane && pane != mSelected) {
        if (mSelected)
            mEarlier.push_back(mSelected);
        std::erase(mEarlier, pane);
        select(*pane);
    }
    if (!pane && mWindow.isVisible())
        mWindow.showProblem(error.message);
    return error;
}

LoadedPane* PreferencesHost::paneAt(const QString& bundlePath, HostError& error)
{
    const auto found = mPanes.find(bundlePath);
    if (found != mPanes.end())
        return found->second.get();
    auto pane = mLoader.load(bundlePath, error);
    return pane ? (mPanes[bundlePath] = std::move(pane)).get() : nullptr;
}

void PreferencesHost::select(LoadedPane& pane)
{
    unselect();
    mSelected = &pane;
    emit showing();
    pane.pane().willSelect();
    mWindow.setView(pane.view(), pane.title(),
                    mEarlier.empty() ? QString() : mEarlier.back()->title());
    mWindow.show();
    pane.pane().didSelect();
}

void PreferencesHost::goBack()
{
    if (mEarlier.empty())
        return;
    LoadedPane* pane = mEarlier.back();
    mEarlier.pop_back();
    select(*pane);
}

void PreferencesHost::close()
{
    unselect();
    mEarlier.clear();
}

void PreferencesHost::unselect()
{
    if (LoadedPane* pane = std::exchange(mSelected, nullptr))
        pane->pane().willUnselect();
}

void PreferencesHost::followActivity(Qt::ApplicationState state)
{
    const bool active = state == Qt::ApplicationActive;
    if (active == std::exchange(mActive, active) || !mSelected)
        return;
    active ? mSelected->pane().applicationDidBecomeActive()
           : mSelected->pane().applicationDidResignActive();
}
