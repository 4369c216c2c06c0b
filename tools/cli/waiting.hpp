#pragma once

#include <chrono>
#include <vector>

#include <poll.h>

namespace KV::tools
{

/// Waits until something can be read from or written to one of the descriptors, at most for so many milliseconds
/// (negative: without limit); `revents` are then set. Returns false if nothing happened in that time.
///
/// Signals that end the program, and a change of the terminal's size, arrive only while it waits. So no signal is
/// missed between looking at the input and waiting for more.
///
/// \throws Interrupted if a signal came that ends the program and an Interruption lives.
bool waitFor(std::vector<pollfd>& descriptors, int milliseconds = -1);

/// As above, until this time at most, rounded up to a millisecond. If the time is over, it does not wait.
bool waitUntil(std::vector<pollfd>& descriptors, std::chrono::steady_clock::time_point until);

}  // namespace KV::tools
