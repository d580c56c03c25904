#pragma once

#include "Common/Rules/FilledText.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/RunLoop.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace farview
{

/// What came of a request, for the command line.
struct Outcome {
    bool isDone = false; ///< as asked
    std::string text;    ///< in the user's language; what is foreign in it is printable
};

/// Something that is asked of the screen server, whose reports tell what comes of it. Made with
/// `std::make_shared`; its end breaks it off. Main thread only.
class ServerRequest : public std::enable_shared_from_this<ServerRequest>
{
public:
    using Ended = std::function<void(const Outcome&)>;

    /// How long the server may take to answer.
    static constexpr Duration limit{5.0};

    virtual ~ServerRequest() = default;

protected:
    /// `platform` outlives it.
    ServerRequest(Platform& platform, Localize localized)
        : mPlatform(platform), mLocalized(std::move(localized))
    {
    }

    /// Asks the server what there is. `ended` is called once, on a later turn.
    void begin(Ended ended);
    void observe(const char* name, NotificationHandler handler);
    /// Unless something is heard before.
    void endAfter(Duration delay, const Outcome& outcome);
    void endUnlessAnswered();
    void end(const Outcome& outcome);
    bool isOver() const { return !mEnded; }
    Platform& platform() const { return mPlatform; }
    const Localize& localized() const { return mLocalized; }

private:
    Platform& mPlatform;
    Localize mLocalized;
    Ended mEnded;
    std::weak_ptr<Timer> mEnding;
};

} // namespace farview
