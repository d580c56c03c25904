#pragma once

#include <QString>
#include <QtPlugin>

#include <memory>

class QWidget;

// What host and pane bundle know of each other. Both sides are built apart and replaced apart:
// nothing else crosses the border, and a change here needs a new interface identifier.

/// With this status a pane ends the application to have it started anew, with the bundle that lies
/// on the disk by then. A host that does not know of it just ends.
inline constexpr int exitToStartAnew = 100;

/// A pane on show in a host. The host calls, in this order: `initWithBundle`, `loadMainView`,
/// `mainViewDidLoad`, then for each showing `willSelect`, `didSelect` and, when the user leaves,
/// `willUnselect`. Destroyed before the application object ends. Main thread only.
class HostedPane
{
public:
    virtual ~HostedPane() = default;

    /// `bundlePath`: the pane's bundle, absolute. False when it cannot be used; `error` then says
    /// why.
    virtual bool initWithBundle(const QString& bundlePath, QString* error) = 0;
    /// Loads the interface file. The pane owns the widget and the host only shows it; null on
    /// failure, and `error` then says which part is missing.
    virtual QWidget* loadMainView(QString* error) = 0;
    virtual void mainViewDidLoad() = 0;
    virtual void willSelect() = 0;
    virtual void didSelect() = 0;
    virtual void willUnselect() = 0;
    /// The application came to the front, or left it.
    virtual void applicationDidBecomeActive() = 0;
    virtual void applicationDidResignActive() = 0;
};

/// The root object of a pane's library: makes the pane of the class that the bundle's Info.plist
/// names as NSPrincipalClass.
class PaneFactory
{
public:
    virtual ~PaneFactory() = default;

    /// `smokeTest`: the pane goes through its life without starting programs and without talking to
    /// others. Null when the class is not one of the library's.
    virtual std::unique_ptr<HostedPane> makePane(const QString& principalClass, bool smokeTest) = 0;
};

#define FARVIEW_PANE_INTERFACE_ID "com.quillon.PreferencePane/1"
Q_DECLARE_INTERFACE(PaneFactory, FARVIEW_PANE_INTERFACE_ID)
