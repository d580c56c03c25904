#pragma once

#include "Platform/Types/AuthorizationStatus.h"
#include "Platform/Types/URL.h"

#include <functional>
#include <memory>
#include <string>

namespace farview
{

/// Runs tools with an administrator's rights, for users who may have that done. Whoever asks them
/// for a password is the desktop; that can take as long as people take, and nothing waits for it.
///
/// Each answer comes once: later, or before the operation returned; never when `target` is gone.
/// Whatever the answer, what was not a success has changed nothing.
class Authorization
{
public:
    using Status = AuthorizationStatus;
    using Answer = std::function<void(Status)>;

    /// Why a tool is not run, whoever asks for it.
    struct Obstacle {
        enum class Kind {
            none,
            missing,           ///< there is no such program
            changeableByOthers ///< others than root can write it, or a folder on the way to it
        };

        Kind kind = Kind::none;
        std::string path; ///< what is missing or changeable

        bool operator==(const Obstacle&) const = default;
    };

    virtual ~Authorization() = default;

    virtual Obstacle obstacleOf(const URL& tool) = 0;
    /// What `create` would come to, without bothering anybody: a success when the right is there or
    /// somebody can be asked for it.
    virtual void foresee(const URL& tool, std::weak_ptr<void> target, Answer then) = 0;
    /// Asks for the right of that name to run the tool. Ends when the user has answered.
    virtual void create(const std::string& right, const URL& tool, std::weak_ptr<void> target,
                        Answer then) = 0;
    /// Runs the tool, without arguments, with the right that was given, until it has ended.
    virtual void executeWithPrivileges(const URL& tool, std::weak_ptr<void> target,
                                       Answer then) = 0;
};

} // namespace farview
