#pragma once

#include <cstdint>
#include <span>

namespace farview
{

/// The displays of this session, and how they are arranged. Calls return `success` or an error.
class DisplayConfiguration
{
public:
    using Error = std::int32_t;
    /// The number of a display; 0 is none.
    using Display = std::uint32_t;
    /// A change that is being put together; 0 is none.
    using Transaction = std::uint32_t;

    static constexpr Error success = 0;
    static constexpr Error failure = 1000;
    static constexpr Error illegalArgument = 1001;
    /// There is no display server, or it has gone.
    static constexpr Error invalidConnection = 1002;
    /// The change is not one that was begun here, or is over.
    static constexpr Error invalidContext = 1003;
    /// The display server refused, and everything is as it was.
    static constexpr Error cannotComplete = 1004;
    static constexpr Error notImplemented = 1006;
    /// The arrangement would be larger than the display server allows.
    static constexpr Error rangeCheck = 1007;

    virtual ~DisplayConfiguration() = default;

    /// Fills `displays` with those that show something, the main one first; `count` becomes their
    /// number. Unchanged after an error.
    virtual Error onlineDisplayList(std::span<Display> displays, std::uint32_t& count) = 0;
    /// The same for those that show what `display` shows, itself first.
    virtual Error displayAliasList(Display display, std::span<Display> displays,
                                   std::uint32_t& count) = 0;
    /// 0 when there is none.
    virtual Display mainDisplay() = 0;

    /// Begins a change. Nothing happens before it is completed.
    virtual Error beginConfiguration(Transaction& transaction) = 0;
    /// `display` shall show what `master` shows. With master 0 it shall show nothing that another
    /// display shows: those that show the same go beside it. Fails for a display that is not
    /// online.
    virtual Error configureMirrorOfDisplay(Transaction transaction, Display display,
                                           Display master) = 0;
    /// Makes the change, all of it or nothing, and ends it whatever comes of it. When one of its
    /// steps has failed, nothing is done and this fails for the same reason. `option` says how long
    /// it should last: 0 while the program runs, 1 for the session, 2 for ever.
    virtual Error completeConfiguration(Transaction transaction, std::uint32_t option) = 0;
};

} // namespace farview
