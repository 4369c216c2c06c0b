#pragma once

#include <skeigiot/api.hpp>

#include <string>
#include <vector>

namespace KV::session
{

/// One of the library's process-wide boundaries, as users name it.
struct SKEIGIOT_API Boundary
{
  std::string option;       ///< its name, such as "boundary-positive"
  std::string description;  ///< for the help
  std::string interval;     ///< which values the library takes, in words
  void (*set)(float);       ///< sets it; logs a value that the library rejects, see setBoundary()
  float (*get)();           ///< returns its value now
};

/// Returns all boundaries.
SKEIGIOT_API const std::vector<Boundary>& boundaries();

/// Sets the boundary, and returns whether the library took the value; one that it rejects changes nothing.
///
/// The library's own warning of a rejected value is not logged: the result says it.
[[nodiscard]] SKEIGIOT_API bool setBoundary(const Boundary& boundary, float value);

/// Says that the boundary rejects the value: "1.5 does not lie strictly between 0 and 1".
SKEIGIOT_API std::string boundaryRefusal(const Boundary& boundary, float value);

/// Gives all boundaries, when it ends, the values that they had when it was made.
///
/// Boundaries are process-wide: what other threads set meanwhile is undone as well.
class SKEIGIOT_API SavedBoundaries
{
public:
  /// Notes the values of all boundaries.
  SavedBoundaries();
  ~SavedBoundaries();
  SavedBoundaries(const SavedBoundaries&) = delete;
  SavedBoundaries& operator=(const SavedBoundaries&) = delete;

  /// Leaves the boundaries as they are now.
  void keep() { _values.clear(); }

private:
  std::vector<float> _values;  // in the order of boundaries(); none if they are kept
};

}  // namespace KV::session
