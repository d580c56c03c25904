#pragma once

#include "Platform/Platform.h"

#include <memory>

namespace farview
{

class SessionBus;

/// How a program wants its platform.
struct DesktopPlatformOptions {
    /// A whole life without a trace: nothing is launched or opened, nothing is looked for on the
    /// network, notifications stay in the process, and what is written is forgotten at the end.
    bool isSmokeTest = false;
    /// Nothing is written on standard error.
    bool isSilent = false;
};

/// The real bodies of every interface, composed: what each program's composition root makes first
/// and destroys last. The application object must exist before it and outlive it. Main thread only.
///
/// Left empty: `application`, which is the host's, and displays and graphics processors, which no
/// program changes yet.
class DesktopPlatform
{
public:
    explicit DesktopPlatform(const DesktopPlatformOptions& options);
    ~DesktopPlatform();

    /// To be installed with `Platform::Scope`. Its references may be replaced by a program.
    Platform& platform();
    /// The program's connection to the session bus, for names of its own.
    SessionBus& sessionBus();

private:
    struct Bodies;

    void composeForUse();
    void composeForSmokeTest();

    Platform mPlatform;
    std::unique_ptr<Bodies> mBodies;
};

} // namespace farview
