#pragma once

#include "Platform/Desktop/Bus/SessionBus.h"
#include "Tests/Support/WaitUntil.h"

#include <optional>
#include <string>

/// A session bus for tests that go on only once it is known whether there is one.
class TestBus : public farview::SessionBus
{
public:
    explicit TestBus(farview::Log& log) : SessionBus(log)
    {
        bool isSettled = false;
        const auto settle = [&] { isSettled = true; };
        QObject life;
        connect(this, &SessionBus::connected, &life, settle);
        connect(this, &SessionBus::disconnected, &life, settle);
        waitUntil([&] { return isSettled; });
    }

    bool takeName(const std::string& name)
    {
        return answer([&](auto then) { requestName(name, this, then); });
    }
    bool hasOwner(const std::string& name)
    {
        return answer([&](auto then) {
            askForOwner(QString::fromStdString(name), this,
                        [then](const QString& owner) { then(!owner.isEmpty()); });
        });
    }

private:
    template <typename Ask> bool answer(Ask ask)
    {
        const auto result = std::make_shared<std::optional<bool>>();
        ask([result](bool is) { *result = is; });
        waitUntil([&] { return result->has_value(); });
        return result->value_or(false);
    }
};
