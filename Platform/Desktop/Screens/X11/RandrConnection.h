#pragma once

#include "Platform/Desktop/Screens/X11/RandrLayout.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace farview
{

class ConnectionBreaker;

/// A connection to the X server for one question or one change. What the server says is checked
/// before it is believed. Lives in the thread of one conversation.
class RandrConnection
{
public:
    using Limit = std::chrono::milliseconds;

    /// Holds a conversation with the server that $DISPLAY names and returns its result. Nothing
    /// when it is not over within the limit: then the connection is cut, and what the conversation
    /// does from then on is lost. `conversation` runs in a thread of its own.
    template <typename Result> static std::optional<Result>
    ask(Limit limit, std::function<Result(RandrConnection&)> conversation)
    {
        const auto result = std::make_shared<std::optional<Result>>();
        const bool isOver = converse(
            limit, [=](RandrConnection& server) { result->emplace(conversation(server)); });
        return isOver ? std::move(*result) : std::nullopt;
    }

    RandrConnection(const std::string& display, ConnectionBreaker& breaker);
    ~RandrConnection();
    RandrConnection(const RandrConnection&) = delete;
    RandrConnection& operator=(const RandrConnection&) = delete;

    /// Nobody else changes anything from now on until the connection ends.
    void keepOthersOut();
    /// The first screen as it is now; nothing when the server has gone or cannot tell.
    std::optional<RandrLayout> layout();
    /// From one layout to another. False when the server refuses; then the first one is restored.
    bool change(const RandrLayout& from, const RandrLayout& to);

private:
    struct Server;

    static bool converse(Limit limit, std::function<void(RandrConnection&)> conversation);

    std::unique_ptr<Server> mServer;
};

} // namespace farview
