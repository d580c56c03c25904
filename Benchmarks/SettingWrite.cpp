// The time to store a setting durably, against writing, syncing and renaming the same bytes in the
// same folder, alternating.
//
// usage: setting-write [FOLDER] [ROUNDS]

#include "Benchmarks/Figures.h"
#include "Benchmarks/StoredSettings.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace
{

std::string contents(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

bool writeBarely(const std::string& path, const std::string& text)
{
    const std::string temporary = path + ".new";
    const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    const bool written = write(file, text.data(), text.size()) == ssize_t(text.size());
    const bool synced = fsync(file) == 0;
    return close(file) == 0 && written && synced && rename(temporary.c_str(), path.c_str()) == 0;
}

std::string deviceName(int round) { return "device-" + std::to_string(round) + ".local"; }

} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 200;
    farview::StoredSettings stored(argc > 1 ? argv[1] : ".");
    farview::Comparison result{"a setting written durably", "a bare write, fsync and rename", "us"};
    const std::string bare = stored.path() + ".bare";
    for (int round = 0; round < rounds; ++round) {
        const std::string text = contents(stored.path());
        double begin = farview::microsecondsNow();
        if (!writeBarely(bare, text)) {
            std::perror("setting-write");
            return 1;
        }
        result.yardstick.push_back(farview::microsecondsNow() - begin);
        begin = farview::microsecondsNow();
        stored.settings().setCurrentVirtualScreenDevice(deviceName(round));
        result.subject.push_back(farview::microsecondsNow() - begin);
    }
    if (contents(stored.path()).find(deviceName(rounds - 1)) == std::string::npos) {
        std::fprintf(stderr, "setting-write: the setting is not in %s\n", stored.path().c_str());
        return 1;
    }
    farview::printRatio(result, 2);
    return 0;
}
