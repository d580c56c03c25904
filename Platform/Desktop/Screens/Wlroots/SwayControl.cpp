#include "Platform/Desktop/Screens/Wlroots/SwayControl.h"

#include <locale>
#include <sstream>
#include <utility>

namespace farview
{
namespace
{

std::string commandFor(const OutputWish& wish)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "output " << swayQuoted(wish.name) << " mode --custom " << wish.width << "x"
         << wish.height << "@" << rateOfOurs / 1000.0 << "Hz scale " << wish.scale;
    if (wish.corner)
        text << " position " << wish.corner->x << " " << wish.corner->y;
    return text.str();
}

} // namespace

void SwayControl::create(Answer then) { mSway.run("create_output", std::move(then)); }

void SwayControl::configure(const OutputWish& wish, Answer then)
{
    mSway.run(commandFor(wish), std::move(then));
}

/// sway 1.7 knows no "unplug".
void SwayControl::remove(const std::string& name, Answer then)
{
    mSway.run(commandFor({name, 1, 1, 1, std::nullopt}));
    mSway.run("output " + swayQuoted(name) + " unplug", std::move(then));
}

} // namespace farview
