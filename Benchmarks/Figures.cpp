#include "Benchmarks/Figures.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>

namespace farview
{
namespace
{

const char* verdict(bool holds) { return holds ? "holds" : "MISSED"; }

void printMedians(const Comparison& comparison)
{
    std::printf("%s: %.4g %s against %.4g %s of %s (spread %.3g to %.3g against %.3g to %.3g)",
                comparison.what.c_str(), median(comparison.subject), comparison.unit,
                median(comparison.yardstick), comparison.unit, comparison.yardstickName.c_str(),
                quantile(comparison.subject, 0.1), quantile(comparison.subject, 0.9),
                quantile(comparison.yardstick, 0.1), quantile(comparison.yardstick, 0.9));
}

} // namespace

double quantile(std::vector<double> samples, double share)
{
    const auto last = static_cast<double>(samples.size() - 1);
    const auto index = static_cast<std::size_t>(std::lround(last * share));
    std::nth_element(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(index),
                     samples.end());
    return samples[index];
}

double median(std::vector<double> samples) { return quantile(std::move(samples), 0.5); }

double microsecondsNow()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::micro>(now).count();
}

void printAtMost(const std::string& what, double value, double limit, const char* unit)
{
    std::printf("%s: %.3g %s; at most %g %s: %s\n", what.c_str(), value, unit, limit, unit,
                verdict(value <= limit));
}

void printRatio(const Comparison& comparison, double limit)
{
    const double ratio = median(comparison.subject) / median(comparison.yardstick);
    printMedians(comparison);
    std::printf(": %.2fx; at most %gx: %s\n", ratio, limit, verdict(ratio <= limit));
}

void printSpeedUp(const Comparison& comparison, double limit)
{
    const double factor = median(comparison.yardstick) / median(comparison.subject);
    printMedians(comparison);
    std::printf(": %.1fx faster; at least %gx: %s\n", factor, limit, verdict(factor >= limit));
}

void printExcess(const Comparison& comparison, double limit)
{
    std::vector<double> differences(comparison.subject.size());
    std::transform(comparison.subject.begin(), comparison.subject.end(),
                   comparison.yardstick.begin(), differences.begin(), std::minus{});
    const double excess = median(differences);
    printMedians(comparison);
    std::printf(": %.1f %s on top; at most %g %s: %s\n", excess, comparison.unit, limit,
                comparison.unit, verdict(excess <= limit));
}

} // namespace farview
