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
  std::string name;              ///< of the recording that is played, or of the bus; empty for standard input
  double speed = 1.;             ///< of the recording
  session::Duration reached{0};  ///< which part of the recording was played
  std::size_t lines = 0;         ///< lines of standard input, steps of the recording, or messages
  std::size_t refused = 0;       ///< how many of them could not be used
  std::string lastError;         ///< the reason for the last of them; empty if all could be used
  bool ended = false;
  bool isBus = false;  ///< messages come in from other programs; nothing is played
};

/// The content of the page.
struct WatchContents
{
  const PersonRows& rows;
  const InputStatus& status;
  session::TimePoint now;
};

/// Returns the page that shows all persons, for a terminal of that size: at most `height` lines of at most `width`
/// columns. It sets in the view how many rows fit.
std::vector<PageLine> watchPage(const WatchContents& contents, WatchView& view, std::size_t width, std::size_t height);

}  // namespace KV::tools
