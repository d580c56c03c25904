#include "Applications/Doctor/Probes.h"

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Platform/Desktop/Discovery/AvahiDaemonLink.h"
#include "Platform/Desktop/Rights/PolkitAuthorization.h"

namespace farview
{
namespace
{

constexpr std::chrono::milliseconds patience{500};

constexpr const char* logInAdvice =
    "Log in to a desktop session, or start the program with dbus-run-session.";
constexpr const char* logOutAdvice = "Log out and in again.";

Finding finding(Severity severity, const char* name, Sentence text, const char* advice,
                const std::string& address)
{
    return {Area::bus, severity, name, std::move(text), {advice}, {{"address", address}}};
}

Finding aboutSession(const BusFacts& facts)
{
    const auto& address = facts.sessionAddress;
    const auto problem = [&](const char* name, const char* text, const char* advice) {
        return finding(Severity::problem, name, {text, {address}}, advice, address);
    };
    switch (facts.session) {
    case BusAnswer::noAddress:
        return finding(Severity::problem, "session-missing",
                       {"This session has no message bus, so the programs cannot talk to each "
                        "other."},
                       logInAdvice, address);
    case BusAnswer::refused:
        return problem("session-refused", "The session's message bus does not run at %@.",
                       logOutAdvice);
    case BusAnswer::silent:
        return problem("session-silent", "The session's message bus at %@ does not answer.",
                       logOutAdvice);
    case BusAnswer::answers:
        if (facts.isSessionUsed)
            return finding(Severity::ok, "session",
                           {"The session's message bus answers at %@.", {address}}, "", address);
        break;
    case BusAnswer::rejects:
        break;
    }
    return problem("session-foreign",
                   "The message bus at %@ belongs to another user and is not used.", logInAdvice);
}

Finding aboutSystem(const BusFacts& facts)
{
    const auto& address = facts.systemAddress;
    if (facts.system == BusAnswer::answers)
        return finding(Severity::ok, "system", {"The system's message bus answers."}, "", address);
    if (facts.system == BusAnswer::silent)
        return finding(Severity::problem, "system-silent",
                       {"The system's message bus at %@ does not answer.", {address}},
                       "Restart the computer.", address);
    return finding(
        Severity::note, "system-missing",
        {"There is no system message bus at %@. Devices are found without it.", {address}}, "",
        address);
}

} // namespace

BusFacts busFacts()
{
    BusFacts facts;
    facts.sessionAddress = SessionBus::address().toStdString();
    facts.session = checkBus(facts.sessionAddress, patience);
    facts.systemAddress = AvahiDaemonLink::systemBusAddress().toStdString();
    facts.system = checkBus(facts.systemAddress, patience);
    const auto fixed = PolkitPlaces().busAddress.toStdString();
    facts.polkit = fixed == facts.systemAddress ? facts.system : checkBus(fixed, patience);
    return facts;
}

Findings findingsAboutBus(const BusFacts& facts)
{
    return {aboutSession(facts), aboutSystem(facts)};
}

} // namespace farview
