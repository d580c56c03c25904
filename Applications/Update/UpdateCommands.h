#pragma once

#include <QSocketNotifier>

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

/// Reads the panel's words from a descriptor, whenever there are some, and never waits for one.
/// Unknown words are ignored. Main thread.
class UpdateCommands
{
public:
    using Handler = std::function<void(UpdateCommand)>;

    /// `descriptor` is used, not owned.
    UpdateCommands(int descriptor, Handler handler);

    /// Reads what has arrived, also while the loop stands still, and calls the handler for each
    /// word.
    void poll();

private:
    void take(std::string_view bytes);
    void takeLine();
    void end();

    int mDescriptor;
    Handler mHandler;
    QSocketNotifier mNotifier;
    std::string mLine;
    bool mHasEnded = false;
};

} // namespace farview
