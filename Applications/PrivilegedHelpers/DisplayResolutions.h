#pragma once

/// The whole of a program that runs with an administrator's rights: stores, for all users of this
/// computer, whether its displays offer HiDPI resolutions. Everything else that is stored there
/// stays. Other programs see the setting before or after, never in between, also when this one is
/// killed.
///
/// Takes no arguments and believes nothing of the environment. Returns the program's exit status: 0
/// when the setting is stored; otherwise nothing has changed, and standard error says why.
int storeDisplayResolutions(bool enabled, int argumentCount);
