// The time to read this machine's whole registry, against a bare recursive walk of the same
// folders, alternating, and the memory that is left of it afterwards.
//
// usage: registry-build [ROUNDS]

#include "Benchmarks/Figures.h"
#include "Common/Registry/QLNRegistryExplorer.h"
#include "Platform/Posix/Registry/SysfsRegistry.h"
#include "Platform/Text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <malloc.h>

namespace
{

/// Searching is not measured.
class NoText final : public farview::Text
{
public:
    std::string lowercase(std::string_view text) const override { return std::string(text); }
    std::string uppercase(std::string_view text) const override { return std::string(text); }
};

std::size_t foldersBelow(const std::string& path, int levels)
{
    DIR* folder = opendir(path.c_str());
    std::size_t count = 1;
    while (const dirent* entry = folder ? readdir(folder) : nullptr) {
        const bool isChild = entry->d_type == DT_DIR && std::strcmp(entry->d_name, ".") != 0 &&
                             std::strcmp(entry->d_name, "..") != 0;
        if (isChild && levels > 0)
            count += foldersBelow(path + "/" + entry->d_name, levels - 1);
    }
    if (folder)
        closedir(folder);
    return count;
}

double kilobytesInUse() { return static_cast<double>(mallinfo2().uordblks) / 1024; }

} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 100;
    farview::SysfsRegistry registry(farview::DriverExtensions({}));
    const NoText text;
    QLNRegistryExplorer explorer(registry, text);
    explorer.init();
    explorer.setCurrentPlane("IOService");
    explorer.buildFullRegistryDictionary();
    const double first = kilobytesInUse();

    constexpr int allLevels = 1000;
    std::size_t folders = 0;
    farview::Comparison result{"the registry of this machine", "a bare walk", "us"};
    for (int round = 0; round < rounds; ++round) {
        double begin = farview::microsecondsNow();
        folders = foldersBelow("/sys/devices", allLevels) + foldersBelow("/sys/module", 0);
        result.yardstick.push_back(farview::microsecondsNow() - begin);
        begin = farview::microsecondsNow();
        explorer.buildFullRegistryDictionary();
        result.subject.push_back(farview::microsecondsNow() - begin);
    }
    const double last = kilobytesInUse();
    explorer.init();
    std::printf("%zu folders, %zu handles; memory: %.0f KB after the first build, %.0f KB after %d "
                "more, %.0f KB without what was built\n",
                folders, registry.handleCount(), first, last, rounds, kilobytesInUse());
    farview::printRatio(result, 3);
    return 0;
}
