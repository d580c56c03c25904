#pragma once

#include "Applications/Preferences/HostStatus.h"
#include "Applications/Preferences/PaneInterface.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace farview
{
class Bundle;
class Bundles;
} // namespace farview

/// A pane that went through its loading and can be shown.
class LoadedPane
{
public:
    LoadedPane(std::unique_ptr<HostedPane> pane, QWidget* view, QString title);
    /// Takes the view out of the window first: it belongs to the pane.
    ~LoadedPane();

    HostedPane& pane() const { return *mPane; }
    QWidget* view() const { return mView; }
    const QString& title() const { return mTitle; }

private:
    std::unique_ptr<HostedPane> mPane;
    QPointer<QWidget> mView;
    QString mTitle;
};

/// Turns a bundle on disk into a pane, or says what is wrong with the bundle. A library is only
/// loaded once its metadata shows that it speaks this host's interface.
class PaneLoader
{
public:
    PaneLoader(farview::Bundles& bundles, bool smokeTest);

    /// `path`: a bundle's folder, absolute. Null with `error` filled in when it cannot be used.
    std::unique_ptr<LoadedPane> load(const QString& path, HostError& error) const;

private:
    std::shared_ptr<farview::Bundle> openBundle(const QString& path, HostError& error) const;
    PaneFactory* loadFactory(const QString& libraryPath, HostError& error) const;
    std::unique_ptr<LoadedPane> makePane(const QString& path, const farview::Bundle& bundle,
                                         PaneFactory& factory, HostError& error) const;

    farview::Bundles& mBundles;
    bool mSmokeTest;
};
