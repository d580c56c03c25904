#include "Common/Rules/VersionOrder.h"

#include <algorithm>

namespace farview
{
namespace
{

constexpr std::size_t longestVersion = 64;

bool isNumber(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(),
                                        [](char each) { return each >= '0' && each <= '9'; });
}

/// Takes the first number off the version; "" when there is none left.
std::string_view takeNumber(std::string_view& version)
{
    const auto dot = version.find('.');
    const auto number = version.substr(0, dot);
    version = dot == std::string_view::npos ? std::string_view() : version.substr(dot + 1);
    return number;
}

std::string_view withoutLeadingZeros(std::string_view number)
{
    return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

/// As texts, so that no number is too large.
std::weak_ordering compareNumbers(std::string_view left, std::string_view right)
{
    left = withoutLeadingZeros(left);
    right = withoutLeadingZeros(right);
    return left.size() != right.size() ? left.size() <=> right.size() : left <=> right;
}

} // namespace

bool isVersion(std::string_view text)
{
    if (text.size() > longestVersion || text.ends_with('.'))
        return false;
    do {
        if (!isNumber(takeNumber(text)))
            return false;
    } while (!text.empty());
    return true;
}

std::weak_ordering compareVersions(std::string_view left, std::string_view right)
{
    while (!left.empty() || !right.empty()) {
        const auto order = compareNumbers(takeNumber(left), takeNumber(right));
        if (order != 0)
            return order;
    }
    return std::weak_ordering::equivalent;
}

} // namespace farview
