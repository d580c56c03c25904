#include "Platform/NotificationCenter.h"

namespace farview
{

NotificationHandler performing(std::weak_ptr<Responder> responder, Selector selector)
{
    return [responder = std::move(responder), selector](const Notification& notification) {
        if (const auto alive = responder.lock())
            alive->perform(selector, const_cast<Notification*>(&notification));
    };
}

} // namespace farview
