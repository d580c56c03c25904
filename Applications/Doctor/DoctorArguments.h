#pragma once

#include <string>
#include <vector>

namespace farview
{

inline constexpr int wrongUseOfDoctor = 2;

struct DoctorArguments {
    enum class Wish { examine, help, version, none };

    Wish wish = Wish::examine;
    bool asJSON = false;
    std::string mistake; ///< of `none`, printable
};

DoctorArguments readDoctorArguments(const std::vector<std::string>& arguments);

/// What --help prints.
extern const char* const doctorUsage;

} // namespace farview
