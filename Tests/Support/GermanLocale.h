#pragma once

#include "Tests/Support/TemporaryFolder.h"

/// The C library's locale becomes German (a comma in numbers) for the length of the scope. The
/// locale is made in a private folder, so the machine need not have it.
class GermanLocale
{
public:
    GermanLocale();
    ~GermanLocale();
    GermanLocale(const GermanLocale&) = delete;
    GermanLocale& operator=(const GermanLocale&) = delete;

    /// False where it could not be made.
    bool isInForce() const { return mIsInForce; }

private:
    TemporaryFolder mFolder;
    ScopedEnvironment mPath{"LOCPATH", mFolder.path().c_str()};
    bool mIsInForce = false;
};
