#pragma once

#include "Platform/Types/PixelRect.h"

#include <functional>
#include <optional>
#include <string>

namespace farview
{

/// An output of ours, as it is to be.
struct OutputWish {
    std::string name;
    int width = 0; ///< in pixels
    int height = 0;
    double scale = 1;
    std::optional<PixelPoint> corner; ///< nothing: wherever the compositor has it
};

/// What only the compositor's own language says: its outputs come and go by it. Main thread only.
class CompositorControl
{
public:
    using Answer = std::function<void(bool isDone)>;

    virtual ~CompositorControl() = default;

    /// Makes one more output, under a name that may be the compositor's choice.
    virtual void create(Answer then) = 0;
    virtual void configure(const OutputWish& wish, Answer then) = 0;
    /// Removes it, or, where the compositor cannot, makes it as small as can be.
    virtual void remove(const std::string& name, Answer then) = 0;
};

/// How many frames in a thousand seconds an output of ours is said to show. Nobody else's has such
/// a number, so that it tells ours from those that the user has made, also after our death.
constexpr int rateOfOurs = 60013;

} // namespace farview
