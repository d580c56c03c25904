#pragma once

namespace farview
{

class Bundle;
struct Platform;

/// Starts the screen server that the pane's bundle holds, as the panel does. `pane` null, or one
/// without a server: a line in the log. A server that runs is not started twice.
void launchServer(Platform& platform, const Bundle* pane);

} // namespace farview
