#pragma once

namespace farview
{

/// Who takes windows back to where they were when a monitor of ours goes, and to the monitor when
/// it returns.
enum class WindowKeeping {
    nobody,    ///< the desktop lets no program do it
    desktop,   ///< the desktop does it by itself, whatever the user's option says
    byFarview, ///< we do, while the user wants that
};

} // namespace farview
