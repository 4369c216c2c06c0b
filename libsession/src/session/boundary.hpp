#pragma once

#include <string>
#include <vector>

namespace tools
{

/// One of the library's process-wide boundaries, as the command line sets it.
struct Boundary
{
  std::string option;       ///< without the dashes
  std::string description;  ///< for the help
  std::string interval;     ///< which values the library takes, in words
  void (*set)(float);
  float (*get)();
};

/// Returns all boundaries.
const std::vector<Boundary>& boundaries();

/// Sets the boundary.
///
/// \throws std::invalid_argument if the library rejects the value.
void setBoundary(const Boundary& boundary, float value);

}  // namespace tools
