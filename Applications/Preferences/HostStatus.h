#pragma once

#include <QString>

/// How the host ends. The numbers are part of its command line.
enum class HostStatus {
    success = 0,
    usage = 2,
    paneNotFound = 3,
    noInfo = 4,
    unreadableInfo = 5,
    wrongPrincipalClass = 6,
    olderInterface = 7,
    newerInterface = 8,
    libraryDoesNotLoad = 9,
    brokenInterfaceFile = 10,
    bundleRefused = 11,
    noAnswer = 12,
    noDisplay = 13,
};

/// Why something could not be done: a status for programs and a sentence for people.
struct HostError {
    HostStatus status = HostStatus::success;
    QString message;
};
