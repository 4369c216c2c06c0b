#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// One of the library's process-wide boundaries, as the command line sets it.
struct SKEIGIOT_API Boundary
{
  std::string option;       ///< without the dashes
  std::string description;  ///< for the help
  std::string interval;     ///< which values the library takes, in words
  void (*set)(float);
  float (*get)();
};

/// Returns all boundaries.
SKEIGIOT_API const std::vector<Boundary>& boundaries();

/// Sets the boundary.
///
/// \throws std::invalid_argument if the library rejects the value.
SKEIGIOT_API void setBoundary(const Boundary& boundary, float value);

}  // namespace KV::session
