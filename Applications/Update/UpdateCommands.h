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

/// The words that the panel says, read from a descriptor without ever waiting for one. What is no
/// word of the protocol is passed over.
class UpdateCommands
{
public:
    using Handler = std::function<void(UpdateCommand)>;

    /// `descriptor` is used, not owned.
    UpdateCommands(int descriptor, Handler handler);

    /// Reads what has come and hands it over, in order.
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
