#pragma once

#include <functional>
#include <utility>

namespace farview
{

/// A handle whose destruction ends what it stands for. Movable; an empty one ends nothing.
class [[nodiscard]] Subscription
{
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> end) : mEnd(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : mEnd(std::exchange(other.mEnd, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept
    {
        if (this != &other) {
            end();
            mEnd = std::exchange(other.mEnd, nullptr);
        }
        return *this;
    }
    ~Subscription() { end(); }

    /// Ends it now; a second call does nothing.
    void end()
    {
        if (auto action = std::exchange(mEnd, nullptr))
            action();
    }

private:
    std::function<void()> mEnd;
};

} // namespace farview
