#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

/// A program at a terminal of its own, at which somebody types a password as often as it asks for
/// one. Ends with the object.
class TypedPassword
{
public:
    TypedPassword(const std::vector<std::string>& program, std::string password);
    ~TypedPassword();
    TypedPassword(const TypedPassword&) = delete;
    TypedPassword& operator=(const TypedPassword&) = delete;

    /// Reads what the program has printed, and types when it asks. To be called again and again.
    void attend();
    /// Everything it has printed.
    const std::string& printed() const { return mPrinted; }
    int timesTyped() const { return mTimesTyped; }

private:
    std::string mPassword;
    std::string mPrinted;
    std::size_t mAnswered = 0;
    int mTimesTyped = 0;
    int mTerminal = -1;
    pid_t mPid = -1;
};
