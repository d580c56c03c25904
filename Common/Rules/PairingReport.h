#pragma once

#include <cstddef>
#include <string>

namespace farview
{

/// How many digits two people compare before a device is trusted.
inline constexpr std::size_t kPairingDigits = 6;

/// Whether a device may be used, as the server tells the others while that is in question.
struct PairingReport {
    enum class State {
        none,         ///< nothing is in question
        comparing,    ///< the device shows digits: does the user see the same there?
        confirmed,    ///< the user said yes here; at the device nobody has yet
        unconfirmed,  ///< a ticked device is in sight that the user never confirmed: to be chosen
        changed,      ///< under the name of a confirmed device another key answers
        refusedThere, ///< somebody said no at the device
        notCompared,  ///< nobody compared in time, or the device went away meanwhile
        tooManyTries, ///< it went wrong several times: no more for some minutes
        interfered,   ///< somebody between the two changes what they say
        tooOld,       ///< the device's program cannot encrypt
        keyUnusable,  ///< this computer's own key cannot be read or made
    };

    State state = State::none;
    /// `kPairingDigits` digits while comparing or confirmed; else empty.
    std::string digits = {};
    /// As the user knows the device: its service's name, or the address that was typed. Foreign.
    std::string device = {};

    bool operator==(const PairingReport&) const = default;
};

/// Whether it says why a device could not be connected.
inline bool isFailure(PairingReport::State state) { return state >= PairingReport::State::changed; }
/// Whether it is how the server answers a request for a device.
inline bool answersRequest(PairingReport::State state)
{
    using State = PairingReport::State;
    return state == State::comparing || state == State::confirmed || isFailure(state);
}

/// Whether it is digits that can be compared.
bool arePairingDigits(const std::string& text);
/// What somebody typed, without blanks around or between: "482 913" is 482913.
std::string withoutBlanks(const std::string& typed);
/// The digits in two groups: "482 913".
std::string groupedDigits(const std::string& digits);

/// The report as it travels: a word, the digits if there are, the device.
std::string textOfPairingReport(const PairingReport& report);
/// Of a foreign text; no text, one that cannot be read or that names no device is a report of
/// nothing.
PairingReport pairingReport(const std::string* text);

} // namespace farview
