#pragma once

#include "Applications/Preferences/PreferencesHost.h"

/// Shows the pane twice, for a moment each, then quits the application.
class SmokeTest : public QObject
{
    Q_OBJECT

public:
    SmokeTest(PreferencesHost& host, QString bundlePath);

    /// Begins with the first showing. Its error is the result; the rest follows by itself.
    HostError start();

private:
    void endShowing();

    PreferencesHost& mHost;
    QString mBundlePath;
    int mShowings = 0;
};
