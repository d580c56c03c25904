#pragma once

#include <spa/pod/builder.h>

#include <array>
#include <cstdint>

namespace farview
{

/// Memory in which what a stream wishes is written.
struct ParameterMemory {
    std::array<std::uint8_t, 1024> bytes;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(bytes.data(), sizeof bytes);
};

/// The size first, then any. Whoever makes the monitor for us follows the first; one that is there
/// already has another.
std::array<const spa_pod*, 2> formatsFor(int width, int height, spa_pod_builder* builder);
/// What the buffers are like, and that the pointer comes apart from the pixels.
std::array<const spa_pod*, 3> buffersWithPointer(spa_pod_builder* builder);

} // namespace farview
