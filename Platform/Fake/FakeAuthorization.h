#pragma once

#include "Platform/Authorization.h"

#include <map>
#include <utility>
#include <vector>

namespace farview
{

/// Runs nothing. Answers at once as scripted, or, when held, only as soon as a test says so.
class FakeAuthorization final : public Authorization
{
public:
    /// One question: what was asked, for which tool.
    struct Request {
        enum class Kind { foresee, create, execute };

        Kind kind;
        std::string right; ///< of a creation
        std::string tool;

        bool operator==(const Request&) const = default;
    };

    Obstacle obstacleOf(const URL& tool) override
    {
        if (tool.path().empty())
            return {Obstacle::Kind::missing, {}};
        return mObstacle;
    }
    void foresee(const URL& tool, std::weak_ptr<void> target, Answer then) override
    {
        ask({Request::Kind::foresee, {}, tool.path()}, std::move(target), std::move(then));
    }
    void create(const std::string& right, const URL& tool, std::weak_ptr<void> target,
                Answer then) override
    {
        ask({Request::Kind::create, right, tool.path()}, std::move(target), std::move(then));
    }
    void executeWithPrivileges(const URL& tool, std::weak_ptr<void> target, Answer then) override
    {
        const Request request{Request::Kind::execute, {}, tool.path()};
        if (obstacleOf(tool).kind == Obstacle::Kind::none)
            ask(request, std::move(target), std::move(then));
        else
            give({request, std::move(target), std::move(then)}, Status::toolExecuteFailure);
    }

    void setObstacle(Obstacle obstacle) { mObstacle = std::move(obstacle); }
    /// The answer to each question of that kind from now on; a success until it is set.
    void setAnswer(Request::Kind kind, Status status) { mAnswers[kind] = status; }
    /// Whether questions of that kind stay open.
    void hold(Request::Kind kind) { mHeld[kind] = true; }
    /// Answers the oldest open question. False when there is none.
    bool answer(Status status)
    {
        if (mOpen.empty())
            return false;
        const Open question = std::move(mOpen.front());
        mOpen.erase(mOpen.begin());
        give(question, status);
        return true;
    }
    bool isAsking() const { return !mOpen.empty(); }

    /// Everything that was asked, in order.
    const std::vector<Request>& requests() const { return mRequests; }
    /// The tools that were run, in order.
    std::vector<std::string> runTools() const
    {
        std::vector<std::string> tools;
        for (const auto& each : mRequests) {
            if (each.kind == Request::Kind::execute)
                tools.push_back(each.tool);
        }
        return tools;
    }

private:
    struct Open {
        Request request;
        std::weak_ptr<void> target;
        Answer then;
    };

    void ask(Request request, std::weak_ptr<void> target, Answer then)
    {
        mRequests.push_back(request);
        Open question{std::move(request), std::move(target), std::move(then)};
        if (mHeld[question.request.kind])
            mOpen.push_back(std::move(question));
        else
            give(question, mAnswers[question.request.kind]);
    }
    static void give(const Open& question, Status status)
    {
        if (const auto target = question.target.lock())
            question.then(status);
    }

    Obstacle mObstacle;
    std::map<Request::Kind, Status> mAnswers;
    std::map<Request::Kind, bool> mHeld;
    std::vector<Open> mOpen;
    std::vector<Request> mRequests;
};

} // namespace farview
