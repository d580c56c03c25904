#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace farview
{

enum class UpdateCommand {
    download,
    install,
    cancel,
    ended, ///< nothing more will come
};

/// Reads the panel's words from a descriptor and never waits for one. Unknown words are ignored.
class UpdateCommands
{
public:
    using Handler = std::function<void(UpdateCommand)>;

    /// `descriptor` is used, not owned.
    UpdateCommands(int descriptor, Handler handler);

    /// Reads what has arrived and calls the handler for each word, in order.
    void poll();
    /// After that, polling does nothing.
    bool hasEnded() const { return mHasEnded; }

private:
    void take(std::string_view bytes);
    void takeLine();
    void end();

    int mDescriptor;
    Handler mHandler;
    std::string mLine;
    bool mHasEnded = false;
};

} // namespace farview
