#pragma once

#include <vector>

#include <poll.h>

namespace KV::tools
{

/// Waits until something can be read from or written to one of the descriptors, at most for so many milliseconds
/// (negative: without limit); `revents` then tell what. Returns false if nothing happened in that time.
///
/// Signals that end the program, and a change of the size of the terminal, come through only while it waits, so that
/// none is missed between a look at what came and the wait for more.
///
/// \throws Interrupted if a signal came that ends the program and an Interruption lives.
bool waitFor(std::vector<pollfd>& descriptors, int milliseconds = -1);

}  // namespace KV::tools
