#include <skeigiot/session/boundary.hpp>

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/librarylog.hpp>

#include <cstddef>

namespace KV::session
{

const std::vector<Boundary>& boundaries()
{
  using KV::AmbianceState;
  using KV::PersonState;
  static const std::string valenceInterval = "strictly between -1 and 1";
  static const std::string unitInterval = "strictly between 0 and 1";
  static const std::vector<Boundary> all{
      {"boundary-positive", "valence from which a mood is positive", valenceInterval,
       PersonState::setBinaryBoundaryPositive, PersonState::getBinaryBoundaryPositive},
      {"boundary-negative", "valence below which a mood is negative", valenceInterval,
       PersonState::setBinaryBoundaryNegative, PersonState::getBinaryBoundaryNegative},
      {"boundary-confidence", "confidence below which a mood is unknown", unitInterval,
       PersonState::setBinaryBoundaryConfidence, PersonState::getBinaryBoundaryConfidence},
      {"boundary-looking-at-robot", "attention from which a person counts as engaged", unitInterval,
       PersonState::setBinaryBoundaryLookingAtRobot, PersonState::getBinaryBoundaryLookingAtRobot},
      {"boundary-strictly-looking-at-robot", "attention from which a person counts as strictly engaged", unitInterval,
       PersonState::setBinaryBoundaryStrictlyLookingAtRobot, PersonState::getBinaryBoundaryStrictlyLookingAtRobot},
      {"boundary-excited", "agitation from which a room is excited", unitInterval,
       AmbianceState::setBinaryBoundaryExcited, AmbianceState::getBinaryBoundaryExcited}};
  return all;
}

bool setBoundary(const Boundary& boundary, float value)
{
  // Only the library knows the allowed values: it logs a rejected value and keeps the old one. Another thread may set
  // the boundary at the same time, so reading the value back proves nothing.
  LibraryLog log;
  boundary.set(value);
  return log.take().empty();
}

std::string boundaryRefusal(const Boundary& boundary, float value)
{
  std::string text;
  appendExact(text, value);
  return text + " does not lie " + boundary.interval;
}

SavedBoundaries::SavedBoundaries()
{
  for (const Boundary& boundary : boundaries())
    _values.push_back(boundary.get());
}

SavedBoundaries::~SavedBoundaries()
{
  for (std::size_t i = 0; i < _values.size(); ++i)
    boundaries()[i].set(_values[i]);
}

}  // namespace KV::session
