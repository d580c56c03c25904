#pragma once

#include <memory>

namespace farview
{

/// Keeps the one shared instance of a class: made on first use, and made anew when another platform
/// was installed since, because the old one refers to the old platform's bodies.
template <typename Instance> class PerPlatform
{
public:
    /// `generation` is the installed platform's, `make` makes an instance on that platform.
    template <typename Make> Instance& get(unsigned generation, Make make)
    {
        if (!mInstance || mGeneration != generation) {
            mGeneration = generation;
            mInstance = make();
        }
        return *mInstance;
    }

private:
    std::unique_ptr<Instance> mInstance;
    unsigned mGeneration = 0;
};

} // namespace farview
