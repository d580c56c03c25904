#include "Applications/Doctor/SessionProbe.h"

#include "Common/FVEConstants.h"
#include "Platform/Accessibility.h"
#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Bus/SingleInstance.h"
#include "Platform/Platform.h"

#include <utility>

namespace farview
{
namespace
{

/// The answers so far.
class SessionQuestions : public std::enable_shared_from_this<SessionQuestions>
{
public:
    SessionQuestions(SessionBus& bus, std::weak_ptr<void> asker,
                     std::function<void(const SessionAnswers&)> then)
        : mBus(bus), mAsker(std::move(asker)), mThen(std::move(then))
    {
    }

    void askWhetherItRuns(const char* identifier, bool SessionAnswers::*fact)
    {
        ++mOpen;
        mBus.askForOwner(QString::fromStdString(applicationBusName(identifier)), &mBus,
                         [self = shared_from_this(), fact](const QString& owner) {
                             self->take(fact, !owner.isEmpty());
                         });
    }
    void askWhetherWindowsMayBeMoved(Accessibility& accessibility)
    {
        ++mOpen;
        accessibility.askWhetherEnabled(mAsker, [self = shared_from_this()](bool isEnabled) {
            self->take(&SessionAnswers::letsWindowsBeMoved, isEnabled);
        });
    }

private:
    void take(bool SessionAnswers::*fact, bool value)
    {
        mFacts.*fact = value;
        if (--mOpen > 0 || mAsker.expired())
            return;
        mFacts.hasBus = mBus.isConnected();
        mThen(mFacts);
    }

    SessionBus& mBus;
    std::weak_ptr<void> mAsker;
    std::function<void(const SessionAnswers&)> mThen;
    SessionAnswers mFacts;
    int mOpen = 0;
};

} // namespace

void askForSessionAnswers(Platform& platform, SessionBus& bus, std::weak_ptr<void> asker,
                          std::function<void(const SessionAnswers&)> then)
{
    const auto questions =
        std::make_shared<SessionQuestions>(bus, std::move(asker), std::move(then));
    questions->askWhetherItRuns(kFVEScreenServerBundleID, &SessionAnswers::hasServer);
    questions->askWhetherItRuns(kFVEMenuExtraBundleID, &SessionAnswers::hasStatusItem);
    questions->askWhetherWindowsMayBeMoved(*platform.accessibility);
}

} // namespace farview
