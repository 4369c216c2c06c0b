#pragma once

#include "terminal/pageline.hpp"

#include <skeigiot/session/persontable.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <cstddef>
#include <vector>

namespace KV::tools
{

/// Returns the pane of the chosen person in `watch`: the forces of the last update, the strongest first, and the newest
/// readings with their ages; side by side on a wide terminal. At most `height` lines.
std::vector<PageLine> watchPane(const session::PersonRow& row, session::TimePoint now, std::size_t width,
                                std::size_t height);

}  // namespace KV::tools
