#include "Tests/Support/TypedPassword.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

TypedPassword::TypedPassword(const std::vector<std::string>& program, std::string password)
    : mPassword(std::move(password)), mPid(::forkpty(&mTerminal, nullptr, nullptr, nullptr))
{
    if (mPid != 0) {
        ::fcntl(mTerminal, F_SETFL, O_NONBLOCK);
        return;
    }
    std::vector<char*> arguments;
    for (const auto& argument : program)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
}

TypedPassword::~TypedPassword()
{
    if (mPid > 0) {
        ::kill(mPid, SIGKILL);
        ::waitpid(mPid, nullptr, 0);
    }
    ::close(mTerminal);
}

void TypedPassword::attend()
{
    std::array<char, 4096> buffer{};
    const auto count = ::read(mTerminal, buffer.data(), buffer.size());
    if (count > 0)
        mPrinted.append(buffer.data(), static_cast<std::size_t>(count));
    const auto prompt = mPrinted.find("assword:", mAnswered);
    if (prompt == std::string::npos)
        return;
    mAnswered = prompt + 1;
    ++mTimesTyped;
    const std::string line = mPassword + "\n";
    if (::write(mTerminal, line.data(), line.size()) < 0)
        --mTimesTyped;
}
