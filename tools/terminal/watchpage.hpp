#pragma once

#include "terminal/pageline.hpp"
#include "terminal/watchview.hpp"

#include <skeigiot/session/snapshot.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::tools
{

/// The state of the input.
struct InputStatus
{
  std::string name;              ///< of the recording that is played; empty for standard input
  double speed = 1.;             ///< of the recording
  session::Duration reached{0};  ///< how much of the recording was played
  std::size_t lines = 0;         ///< lines of standard input, or steps of the recording
  std::size_t refused = 0;       ///< how many of them could not be used
  std::string lastError;         ///< of the last one that could not be used; empty if all could
  bool ended = false;
};

/// What the page shows.
struct WatchContents
{
  const PersonRows& rows;
  const InputStatus& status;
  session::TimePoint now;
};

/// Returns the page that shows all persons, for a terminal of that size; there are `height` lines at most, and none is
/// wider than `width` columns. The view learns how many rows there is room for.
std::vector<PageLine> watchPage(const WatchContents& contents, WatchView& view, std::size_t width, std::size_t height);

}  // namespace KV::tools
