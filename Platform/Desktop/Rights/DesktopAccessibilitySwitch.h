#pragma once

#include "Platform/AccessibilitySwitch.h"
#include "Platform/Desktop/Bus/BusNameWatcher.h"

#include <QObject>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace farview
{

class AccessibilitySetting;

/// The switch as the session's accessibility service offers it (`org.a11y.Status`), together with
/// the lasting setting, where the desktop has it. Main thread only; never blocks.
class DesktopAccessibilitySwitch final : public QObject, public AccessibilitySwitch
{
    Q_OBJECT

public:
    /// `bus` must outlive this.
    explicit DesktopAccessibilitySwitch(SessionBus& bus);

    /// Starts the service where it does not run yet.
    Subscription observe(Observer observer) override;
    void set(bool on, Done done) override;

private Q_SLOTS:
    void propertiesChanged(const QString& interface);

private:
    using Then = std::function<void()>;

    void listen();
    void serviceChanged(bool isThere);
    void read(Then then);
    void setOnBus(bool on, const Done& done);
    void finish(bool on, const Done& done);
    void learnLifetime(Lifetime lifetime);
    void tell(const State& state);

    SessionBus& mBus;
    AccessibilitySetting* mSetting; ///< a child of this
    Observer mObserver;
    std::optional<BusNameWatcher> mService;
    unsigned mObservation = 0; ///< counts the observers so far
    State mState;
    bool mIsKnown = false;
};

} // namespace farview
