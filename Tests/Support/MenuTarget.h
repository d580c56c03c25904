#pragma once

#include "Controls/Menu.h"

#include <memory>
#include <string>
#include <vector>

/// Makes the entries of a menu, answers for them, and writes down which were chosen.
class MenuTarget final : public farview::Object,
                         public farview::Responder,
                         public std::enable_shared_from_this<MenuTarget>
{
public:
    bool respondsTo(farview::Selector /*selector*/) const override { return answers; }
    bool perform(farview::Selector /*selector*/, farview::Object* sender) override
    {
        chosen.push_back(dynamic_cast<farview::MenuItem*>(sender)->title);
        return true;
    }

    std::shared_ptr<farview::MenuItem> entry(const std::string& title)
    {
        auto item = entryForNobody(title);
        item->target = weak_from_this();
        return item;
    }
    /// Nobody answers for it, so it cannot be chosen.
    static std::shared_ptr<farview::MenuItem> entryForNobody(const std::string& title)
    {
        auto item = std::make_shared<farview::MenuItem>();
        item->title = title;
        item->action = {"take:"};
        return item;
    }

    bool answers = true;
    std::vector<std::string> chosen;
};
