#pragma once

#include "Platform/RunLoop.h"

#include <cstddef>
#include <functional>

namespace farview
{

/// How a supervised program is restarted.
struct SupervisorOptions {
    /// After a crash: the first pause, then twice as long each time, up to the longest.
    Duration firstPause{1.0};
    Duration longestPause{60.0};
    /// A program that ran that long has started well: the next pause is the first again.
    Duration steadyAfter{60.0};
};

/// Runs a program in a child process and starts it again after a crash (an end by a signal that
/// nobody sent to end it). To be the first thing in main(), before threads, files and connections.
///
/// In the child it calls `program` with the number of crashes so far and returns its result. In the
/// supervising process it returns when the child has ended by itself, with the child's status, or
/// when it was asked to quit: SIGTERM, SIGINT and SIGHUP are passed on to the child. When the
/// supervisor dies, its child gets SIGTERM.
///
/// The child keeps the program's short name; the supervisor is called "farview-keeper", so that who
/// looks for the program by name finds it only while it really runs.
int runSupervised(const std::function<int(unsigned crashes)>& program, SupervisorOptions options);

/// Memory, zero at first, that a program shares with those that it starts by `fork`: asked for
/// before `runSupervised`, it holds after a crash what the crashed program wrote. It is never given
/// back. Null when there is none.
void* memorySharedWithChildren(std::size_t bytes);

} // namespace farview
