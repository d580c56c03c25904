#pragma once

namespace farview
{

class Accessibility;
class Application;
class Authorization;
class Bundles;
class Clock;
class Discovery;
class DisplayConfiguration;
class DistributedNotificationCenter;
class FileManager;
class Firewall;
class GraphicsControl;
class IORegistry;
class Log;
class LoginItem;
class NetworkCondition;
class NotificationCenter;
class Preferences;
class ProcessTable;
class RunLoop;
class SearchPaths;
class SystemVersion;
class Text;
class Updaters;
class Workspace;

/// Everything that the system needs of a desktop. Each reference is preset to a complete body that
/// does nothing and finds nothing, so a program only fills in what it uses. Does not own the
/// bodies.
struct Platform {
    /// Preset to the empty bodies.
    Platform();

    Accessibility* accessibility;
    Application* application;
    Authorization* authorization;
    Bundles* bundles;
    Clock* clock;
    Discovery* discovery;
    DisplayConfiguration* displayConfiguration;
    DistributedNotificationCenter* distributedNotificationCenter;
    FileManager* fileManager;
    Firewall* firewall;
    GraphicsControl* graphicsControl;
    IORegistry* registry;
    Log* log;
    LoginItem* loginItem;
    NetworkCondition* networkCondition;
    NotificationCenter* notificationCenter;
    Preferences* preferences;
    ProcessTable* processTable;
    RunLoop* runLoop;
    SearchPaths* searchPaths;
    SystemVersion* systemVersion;
    Text* text;
    Updaters* updaters;
    Workspace* workspace;

    /// The one installed in this module; the empty one when none is. Only for functions whose fixed
    /// name leaves no parameter for it.
    static Platform& current();
    /// Counts installations: shared instances compare it to know that they belong to an earlier
    /// platform.
    static unsigned generation();

    /// Installs a platform for as long as the scope lives, then restores the one before.
    class Scope
    {
    public:
        explicit Scope(Platform& platform);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Platform* mPrevious;
    };
};

} // namespace farview
