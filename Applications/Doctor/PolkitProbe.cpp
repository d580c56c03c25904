#include "Applications/Doctor/Probes.h"

#include "Common/FVEConstants.h"
#include "Common/Rules/HiDPITexts.h"
#include "Platform/Bundle.h"
#include "Platform/Platform.h"
#include "Platform/Types/URL.h"

#include <utility>

namespace farview
{
namespace
{

using Kind = Authorization::Obstacle::Kind;

Finding note(const char* name, Sentence text, const PolkitFacts& facts)
{
    return {Area::polkit, Severity::note, name, std::move(text), {}, {{"tool", facts.tool}}};
}

const char* nameFor(AuthorizationStatus status)
{
    switch (status) {
    case AuthorizationStatus::denied:
        return "denied";
    case AuthorizationStatus::interactionNotAllowed:
        return "no-agent";
    default:
        return "unavailable";
    }
}

} // namespace

PolkitFacts polkitFacts(Platform& platform, const Bundle* pane)
{
    PolkitFacts facts;
    if (pane)
        facts.tool =
            pane->pathForResource(kFVEDisplayResolutionsOnApplicationName, "").value_or("");
    facts.obstacle = platform.authorization->obstacleOf(URL::fileURLWithPath(facts.tool));
    return facts;
}

void askForPolkitFacts(Platform& platform, const Bundle* pane, std::weak_ptr<void> target,
                       std::function<void(const PolkitFacts&)> then)
{
    auto facts = polkitFacts(platform, pane);
    const auto tool = URL::fileURLWithPath(facts.tool);
    platform.authorization->foresee(
        tool, std::move(target),
        [facts = std::move(facts), then = std::move(then)](AuthorizationStatus status) mutable {
            facts.foreseen = status;
            then(facts);
        });
}

Findings findingsAboutPolkit(const PolkitFacts& facts)
{
    if (facts.obstacle.kind == Kind::missing)
        return {note("tool-missing", {toolIsMissingText}, facts)};
    if (facts.obstacle.kind == Kind::changeableByOthers)
        return {note("tool-changeable", {toolIsChangeableText, {facts.obstacle.path}}, facts)};
    if (!facts.foreseen)
        return {note("unanswered",
                     {"Nobody said in time whether an administrator's rights can be "
                      "asked for."},
                     facts)};
    const std::string trouble = authorizationTrouble(*facts.foreseen);
    if (!trouble.empty())
        return {note(nameFor(*facts.foreseen), {trouble}, facts)};
    return {{Area::polkit,
             Severity::ok,
             "ready",
             {"Administrator's rights can be asked for (polkit)."}}};
}

} // namespace farview
