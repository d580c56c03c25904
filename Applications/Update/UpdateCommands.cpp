#include "Applications/Update/UpdateCommands.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace farview
{
namespace
{

constexpr std::size_t longestWord = 64;

bool isReadable(int descriptor)
{
    pollfd question{descriptor, POLLIN, 0};
    return ::poll(&question, 1, 0) > 0;
}

} // namespace

UpdateCommands::UpdateCommands(int descriptor, Handler handler)
    : mDescriptor(descriptor), mHandler(std::move(handler)),
      mNotifier(descriptor, QSocketNotifier::Read)
{
    QObject::connect(&mNotifier, &QSocketNotifier::activated, &mNotifier, [this] { poll(); });
}

void UpdateCommands::poll()
{
    std::array<char, 256> buffer{};
    while (!mHasEnded && isReadable(mDescriptor)) {
        const auto count = ::read(mDescriptor, buffer.data(), buffer.size());
        if (count > 0)
            take({buffer.data(), static_cast<std::size_t>(count)});
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            end();
    }
}

void UpdateCommands::take(std::string_view bytes)
{
    for (const char each : bytes) {
        if (each == '\n')
            takeLine();
        else if (mLine.size() < longestWord)
            mLine += each;
    }
}

void UpdateCommands::takeLine()
{
    const std::string line = std::exchange(mLine, {});
    if (line == "download")
        mHandler(UpdateCommand::download);
    else if (line == "install")
        mHandler(UpdateCommand::install);
    else if (line == "cancel")
        mHandler(UpdateCommand::cancel);
}

void UpdateCommands::end()
{
    mHasEnded = true;
    mNotifier.setEnabled(false);
    mHandler(UpdateCommand::ended);
}

} // namespace farview
