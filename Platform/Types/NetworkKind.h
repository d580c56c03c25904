#pragma once

namespace farview
{

/// The road to the internet, as far as it matters to what nobody asked for.
enum class NetworkKind {
    absent,
    metered, ///< every byte costs, or may
    unmetered
};

} // namespace farview
