#pragma once

#include <avahi-common/watch.h>

namespace farview
{

/// Lets the embedded stack live on Qt's loop. Stateless; the loop is that of the calling thread.
const AvahiPoll* qtAvahiPoll();

} // namespace farview
