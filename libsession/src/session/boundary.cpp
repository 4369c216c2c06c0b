#include <skeigiot/session/boundary.hpp>

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/librarylog.hpp>

#include <stdexcept>

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

void setBoundary(const Boundary& boundary, float value)
{
  // The library alone knows what it takes: it logs a rejected value and keeps the old one.
  LibraryLog log;
  boundary.set(value);
  if (log.take().empty())
    return;
  std::string number;
  appendExact(number, value);
  throw std::invalid_argument("--" + boundary.option + ": " + number + " does not lie " + boundary.interval);
}

}  // namespace KV::session
