#pragma once

#include <skeigiot/api.hpp>

#include <cstddef>

namespace KV::session
{

/// Returns how many sessions can be played at a time: as many as wanted, or fewer if the process may not open enough
/// files for that, but at least 1.
SKEIGIOT_API std::size_t possibleJobs(std::size_t wanted);

}  // namespace KV::session
