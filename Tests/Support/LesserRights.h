#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

/// For as long as it lives, this thread opens files as an ordinary user does, also when the tests
/// run as root.
class LesserRights
{
public:
    LesserRights() : mIsRoot(::geteuid() == 0)
    {
        constexpr uid_t nobody = 65534;
        if (mIsRoot)
            ::setfsuid(nobody);
    }
    ~LesserRights()
    {
        if (mIsRoot)
            ::setfsuid(0);
    }
    LesserRights(const LesserRights&) = delete;
    LesserRights& operator=(const LesserRights&) = delete;

private:
    bool mIsRoot;
};
