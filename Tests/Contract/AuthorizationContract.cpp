#include "Platform/Desktop/Rights/PolkitAuthorization.h"
#include "Platform/Fake/FakeAuthorization.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/ScriptedPolkit.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace farview
{
namespace
{

using Kind = FakeAuthorization::Request::Kind;
using Obstacle = Authorization::Obstacle;
using Status = Authorization::Status;
using testing::ElementsAre;
using testing::IsEmpty;

struct FakeBench {
    void answerWith(Status status) { authorization.setAnswer(Kind::create, status); }
    void endToolWith(Status status) { authorization.setAnswer(Kind::execute, status); }
    void leaveOpen() { authorization.hold(Kind::create); }
    void foreseeWith(Status status) { authorization.setAnswer(Kind::foresee, status); }

    FakeAuthorization authorization;
};

/// polkit as a test scripts it, and a program in the place of pkexec.
struct PolkitBench {
    PolkitBench() { endToolWith(Status::success); }

    void answerWith(Status status)
    {
        switch (status) {
        case Status::success:
            return polkit.setResult(true, false);
        case Status::canceled:
            return polkit.setResult(false, false,
                                    {{QStringLiteral("polkit.dismissed"), QStringLiteral("true")}});
        case Status::interactionNotAllowed:
            return polkit.setResult(false, true);
        case Status::internal:
            return polkit.setError(QStringLiteral("org.freedesktop.PolicyKit1.Error.Failed"));
        default:
            return polkit.setResult(false, false);
        }
    }
    void foreseeWith(Status status) { answerWith(status); }
    void endToolWith(Status status)
    {
        const char* const code = status == Status::success    ? "0"
                                 : status == Status::canceled ? "126"
                                                              : "127";
        folder.write("pkexec", std::string("#!/bin/sh\nexit ") + code + "\n", true);
    }
    void leaveOpen() { polkit.hold(); }

    TemporaryFolder folder;
    PrivateBus bus;
    ScriptedPolkit polkit{bus.address()};
    PolkitAuthorization authorization{
        {QString::fromStdString(bus.address()), QString::fromStdString(folder.path("pkexec"))}};
};

template <typename Bench> class AuthorizationContract : public testing::Test
{
protected:
    Authorization& authorization() { return mBench.authorization; }
    Authorization::Answer noting()
    {
        return [this](Status status) { mAnswers.push_back(status); };
    }
    bool isAnswered() const
    {
        return waitUntil([this] { return !mAnswers.empty(); });
    }

    Bench mBench;
    /// A program that root alone can change, on every system.
    const URL mTool = URL::fileURLWithPath("/usr/bin/true");
    std::shared_ptr<int> mTarget = std::make_shared<int>();
    std::vector<Status> mAnswers;
};

using Benches = testing::Types<FakeBench, PolkitBench>;
TYPED_TEST_SUITE(AuthorizationContract, Benches);

TYPED_TEST(AuthorizationContract, EachEndOfTheQuestionIsToldOnce)
{
    for (const auto status : {Status::success, Status::denied, Status::canceled,
                              Status::interactionNotAllowed, Status::internal}) {
        this->mBench.answerWith(status);
        this->mAnswers.clear();
        this->authorization().create("right", this->mTool, this->mTarget, this->noting());
        EXPECT_TRUE(this->isAnswered());
        runLoopFor(std::chrono::milliseconds(20));
        EXPECT_THAT(this->mAnswers, ElementsAre(status));
    }
}

TYPED_TEST(AuthorizationContract, WhatCanBeForeseenIsToldWithoutAQuestion)
{
    for (const auto status :
         {Status::success, Status::denied, Status::interactionNotAllowed, Status::internal}) {
        this->mBench.foreseeWith(status);
        this->mAnswers.clear();
        this->authorization().foresee(this->mTool, this->mTarget, this->noting());
        EXPECT_TRUE(this->isAnswered());
        EXPECT_THAT(this->mAnswers, ElementsAre(status));
    }
}

TYPED_TEST(AuthorizationContract, EachEndOfTheToolIsToldOnce)
{
    for (const auto status : {Status::success, Status::canceled, Status::toolExecuteFailure}) {
        this->mBench.endToolWith(status);
        this->mAnswers.clear();
        this->authorization().executeWithPrivileges(this->mTool, this->mTarget, this->noting());
        EXPECT_TRUE(this->isAnswered());
        EXPECT_THAT(this->mAnswers, ElementsAre(status));
    }
}

TYPED_TEST(AuthorizationContract, NobodyIsToldWhoHasGone)
{
    this->mBench.answerWith(Status::success);
    this->mTarget.reset();
    this->authorization().create("right", this->mTool, this->mTarget, this->noting());
    this->authorization().foresee(this->mTool, this->mTarget, this->noting());
    this->authorization().executeWithPrivileges(this->mTool, this->mTarget, this->noting());
    runLoopFor(std::chrono::milliseconds(300));
    EXPECT_THAT(this->mAnswers, IsEmpty());
}

TYPED_TEST(AuthorizationContract, AQuestionMayStayOpen)
{
    this->mBench.leaveOpen();
    this->authorization().create("right", this->mTool, this->mTarget, this->noting());
    runLoopFor(std::chrono::milliseconds(100));
    EXPECT_THAT(this->mAnswers, IsEmpty());
}

TYPED_TEST(AuthorizationContract, AToolThatRootAloneCanChangeHasNoObstacle)
{
    EXPECT_EQ(this->authorization().obstacleOf(this->mTool), Obstacle{});
}

TYPED_TEST(AuthorizationContract, AToolThatIsNowhereIsMissingAndCannotBeRun)
{
    EXPECT_EQ(this->authorization().obstacleOf(URL()).kind, Obstacle::Kind::missing);
    this->authorization().executeWithPrivileges(URL(), this->mTarget, this->noting());
    EXPECT_TRUE(this->isAnswered());
    EXPECT_THAT(this->mAnswers, ElementsAre(Status::toolExecuteFailure));
}

} // namespace
} // namespace farview
