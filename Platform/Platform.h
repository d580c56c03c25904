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
class VirtualScreens;
class Workspace;

/// The complete body of an interface that does nothing and finds nothing. Defined for each
/// interface that `Platform` names; one that is missing does not link.
template <typename Interface> Interface* nothingHere();

/// A pointer to the body of an interface, never null: preset to the one that does nothing. Does not
/// own it.
template <typename Interface> class Body
{
public:
    Body() = default;
    Body& operator=(Interface* body)
    {
        mBody = body;
        return *this;
    }
    Interface* operator->() const { return mBody; }
    Interface& operator*() const { return *mBody; }
    operator Interface*() const { return mBody; }

private:
    Interface* mBody = nothingHere<Interface>();
};

/// Everything that the system needs of a desktop. A program only fills in what it uses.
struct Platform {
    Body<Accessibility> accessibility;
    Body<Application> application;
    Body<Authorization> authorization;
    Body<Bundles> bundles;
    Body<Clock> clock;
    Body<Discovery> discovery;
    Body<DisplayConfiguration> displayConfiguration;
    Body<DistributedNotificationCenter> distributedNotificationCenter;
    Body<FileManager> fileManager;
    Body<Firewall> firewall;
    Body<GraphicsControl> graphicsControl;
    Body<IORegistry> registry;
    Body<Log> log;
    Body<LoginItem> loginItem;
    Body<NetworkCondition> networkCondition;
    Body<NotificationCenter> notificationCenter;
    Body<Preferences> preferences;
    Body<ProcessTable> processTable;
    Body<RunLoop> runLoop;
    Body<SearchPaths> searchPaths;
    Body<SystemVersion> systemVersion;
    Body<Text> text;
    Body<Updaters> updaters;
    Body<VirtualScreens> virtualScreens;
    Body<Workspace> workspace;

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
