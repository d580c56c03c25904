#include "Platform/Posix/PosixSystemVersion.h"

namespace farview
{
namespace
{

constexpr std::int32_t majorLevel = 10;
constexpr std::int32_t minorLevel = 9;
constexpr std::int32_t bugFixLevel = 0;

} // namespace

std::optional<std::int32_t> PosixSystemVersion::gestalt(SystemVersionQuery query)
{
    switch (query) {
    case SystemVersionQuery::packed:
        return majorLevel / 10 << 12 | majorLevel % 10 << 8 | minorLevel << 4 | bugFixLevel;
    case SystemVersionQuery::major:
        return majorLevel;
    case SystemVersionQuery::minor:
        return minorLevel;
    case SystemVersionQuery::bugFix:
        return bugFixLevel;
    }
    return std::nullopt;
}

} // namespace farview
