#include "Benchmarks/PictureRun.h"

#include <sys/mman.h>

#include <fcntl.h>
#include <unistd.h>

namespace farview
{

PictureRun* openPictureRun(const char* path)
{
    const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0 || ftruncate(file, sizeof(PictureRun)) != 0)
        return nullptr;
    void* memory = mmap(nullptr, sizeof(PictureRun), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<PictureRun*>(memory);
}

std::optional<std::uint16_t> readMark(const FrameView& mark)
{
    const auto isWhite = [&](int column, int row) {
        const auto x = column * kMarkSquare + kMarkSquare / 2;
        const auto y = row * kMarkSquare + kMarkSquare / 2;
        return (mark.row(y)[x] & 0xFF00) > 0x8000;
    };
    int number = 0;
    for (int column = 0; column < 16; ++column) {
        if (isWhite(column, 0) == isWhite(column, 1))
            return std::nullopt;
        number |= isWhite(column, 0) << column;
    }
    return static_cast<std::uint16_t>(number);
}

} // namespace farview
