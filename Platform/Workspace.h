#pragma once

#include "Platform/Types/Object.h"
#include "Platform/Types/URL.h"

namespace farview
{

/// The desktop: starts applications and opens documents.
class Workspace
{
public:
    static constexpr unsigned launchWithoutAddingToRecents = 0x100;
    static constexpr unsigned launchWithoutActivation = 0x200;
    static constexpr unsigned launchAsync = 0x10000;

    virtual ~Workspace() = default;

    /// Starts the application bundle at `url`, detached from this process. One that already runs in
    /// this session is not started twice. False when it cannot be started (missing, not
    /// executable).
    virtual bool launchApplicationAtURL(const URL& url, unsigned options) = 0;
    /// Opens a document or an address in the program that the user chose for it. False when nothing
    /// opened.
    virtual bool openURL(const URL& url) = 0;
};

/// The running application itself, as the desktop sees it. It is the object of the in-process
/// notification `applicationDidBecomeActiveNotification`.
class Application : public Object
{
public:
    static constexpr unsigned activateAllWindows = 1;
    static constexpr unsigned activateIgnoringOtherApps = 2;

    /// Brings the application to the front.
    virtual bool activateWithOptions(unsigned options) = 0;
    /// Ends the application and starts it anew, with what is on the disk by then. False when that
    /// cannot be done; else the end comes on a later turn.
    virtual bool reopen() = 0;
};

inline constexpr const char* applicationDidBecomeActiveNotification =
    "NSApplicationDidBecomeActiveNotification";

} // namespace farview
