#include "Tests/Support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace
{

void setVariable(const std::string& name, const char* value)
{
    if (value)
        ::setenv(name.c_str(), value, 1);
    else
        ::unsetenv(name.c_str());
}

} // namespace

TemporaryFolder::TemporaryFolder() : mPath("/tmp/farview-test-XXXXXX")
{
    if (!::mkdtemp(mPath.data()))
        throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& text,
                                   bool executable)
{
    const std::filesystem::path file = path(name);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
    if (executable)
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    return file;
}

ScopedEnvironment::ScopedEnvironment(const char* name, const char* value) : mName(name)
{
    const char* previous = ::getenv(name);
    mWasSet = previous != nullptr;
    mPrevious = previous ? previous : "";
    setVariable(mName, value);
}

ScopedEnvironment::~ScopedEnvironment()
{
    setVariable(mName, mWasSet ? mPrevious.c_str() : nullptr);
}
