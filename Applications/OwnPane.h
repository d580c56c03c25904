#pragma once

#include <memory>

namespace farview
{

class Bundle;
struct Platform;

/// The pane's bundle: the one that this program lies in, else the one that is installed; null when
/// there is none. `platform` is the one in force, and the application object exists.
std::shared_ptr<Bundle> ownPane(Platform& platform);

} // namespace farview
