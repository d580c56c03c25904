#include "Applications/Update/UpdateFailure.h"

#include "Platform/Posix/PropertyLists/PropertyListFile.h"

#include <cerrno>

namespace farview
{

const char* wordFor(UpdateReason reason)
{
    switch (reason) {
    case UpdateReason::notConfigured:
        return "not-configured";
    case UpdateReason::managed:
        return "managed";
    case UpdateReason::busy:
        return "busy";
    case UpdateReason::insecureAddress:
        return "insecure-address";
    case UpdateReason::noNetwork:
        return "no-network";
    case UpdateReason::server:
        return "server";
    case UpdateReason::certificate:
        return "certificate";
    case UpdateReason::stalled:
        return "stalled";
    case UpdateReason::feedUnreadable:
        return "feed-unreadable";
    case UpdateReason::systemTooOld:
        return "system-too-old";
    case UpdateReason::tooLarge:
        return "too-large";
    case UpdateReason::noSpace:
        return "no-space";
    case UpdateReason::wrongLength:
        return "wrong-length";
    case UpdateReason::wrongSignature:
        return "wrong-signature";
    case UpdateReason::archive:
        return "archive";
    case UpdateReason::wrongVersion:
        return "wrong-version";
    case UpdateReason::downgrade:
        return "downgrade";
    case UpdateReason::unfit:
        return "unfit";
    case UpdateReason::write:
        return "write";
    case UpdateReason::internal:
        break;
    }
    return "internal";
}

UpdateFailure writeFailure(int error, const std::string& what)
{
    const bool isFull = error == ENOSPC || error == EDQUOT;
    return {isFull ? UpdateReason::noSpace : UpdateReason::write, what + ": " + errorText(error)};
}

} // namespace farview
