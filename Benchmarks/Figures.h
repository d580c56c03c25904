#pragma once

#include <string>
#include <vector>

namespace farview
{

/// The value below which that share (0..1) of the samples lies. At least one sample.
double quantile(std::vector<double> samples, double share);
double median(std::vector<double> samples);

/// The monotonic clock, which all processes share, in microseconds.
double microsecondsNow();

/// One line with a figure, its target and whether it holds.
void printAtMost(const std::string& what, double value, double limit, const char* unit);

/// Two programs that did the same thing in one run, alternating.
struct Comparison {
    std::string what;
    std::string yardstickName;
    const char* unit = "";
    std::vector<double> subject{};
    std::vector<double> yardstick{};
};

/// One line: both medians and subject / yardstick, which should be at most `limit`.
void printRatio(const Comparison& comparison, double limit);
/// One line: both medians and yardstick / subject, which should be at least `limit`.
void printSpeedUp(const Comparison& comparison, double limit);
/// One line: both medians and the median of each round's subject - yardstick, which should be at
/// most `limit`.
void printExcess(const Comparison& comparison, double limit);

} // namespace farview
