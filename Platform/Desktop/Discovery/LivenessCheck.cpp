#include "Platform/Desktop/Discovery/LivenessCheck.h"

#include "Platform/Desktop/Discovery/EmbeddedSource.h"

#include <QTimer>

#include <chrono>
#include <utility>

namespace farview
{
namespace
{

/// Long enough for three questions and the answer to the last.
constexpr auto timeToAnswer = std::chrono::seconds(4);

} // namespace

LivenessCheck::LivenessCheck(Events events) : mEvents(std::move(events)) {}

void LivenessCheck::check(const std::vector<ServiceName>& services)
{
    auto start = EmbeddedServer::start();
    // A daemon that allows no other beside it: what it says has to be believed.
    if (!start.server)
        return;
    EmbeddedSource source(std::move(start.server));
    std::vector<std::string> asked;
    for (const auto& service : services) {
        const auto [position, isNew] = mListeners.try_emplace(service.name);
        if (!isNew)
            continue;
        const auto name = service.name;
        position->second.listening = source.listenFor(service, [this, name] { hear(name); });
        asked.push_back(name);
    }
    QTimer::singleShot(timeToAnswer, this, [this, asked] { judge(asked); });
}

void LivenessCheck::hear(const std::string& name)
{
    const auto found = mListeners.find(name);
    if (found == mListeners.end())
        return;
    const bool wasDead = found->second.isDead;
    const auto ended = mListeners.extract(found);
    if (wasDead)
        mEvents.returned(name);
}

void LivenessCheck::judge(const std::vector<std::string>& names)
{
    for (const auto& name : names) {
        const auto found = mListeners.find(name);
        if (found == mListeners.end() || std::exchange(found->second.isDead, true))
            continue;
        mEvents.died(name);
    }
}

void LivenessCheck::forget(const std::string& name) { mListeners.erase(name); }

} // namespace farview
