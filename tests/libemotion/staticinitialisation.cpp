#include "staticinitialisation.hpp"

#include "support/capturedlog.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/person.hpp>

#include <algorithm>

namespace
{

bool isRegistered(const std::string& category)
{
  const std::vector<std::string> names = ko::log::categories();
  return std::find(names.begin(), names.end(), category) != names.end();
}

StaticInitialisation useTheLibraries()
{
  StaticInitialisation found;
  found.libraryCameFirst = isRegistered("kvmood.emotionalstate");
  found.stateCategory = &ko::log::addCategory("kvmood.emotionalstate").name();
  found.ownCategory = &ko::log::addCategory("test.staticinitialisation").name();

  found.confidenceBoundary = KV::PersonState::getBinaryBoundaryConfidence();
  {
    const support::CapturedLog log;
    KV::PersonState::setBinaryBoundaryConfidence(2.f);
    found.warnings = log.records();
  }
  found.confidenceBoundaryAfterRejection = KV::PersonState::getBinaryBoundaryConfidence();
  KV::PersonState::setBinaryBoundaryNegative(negativeBoundarySet);
  KV::AmbianceState::setBinaryBoundaryExcited(excitementBoundarySet);

  found.zones = KV::attentionZonesStringMapping;
  found.valenceOfASmile = valenceOfASmilingPerson();
  return found;
}

const StaticInitialisation found = useTheLibraries();

}  // namespace

const StaticInitialisation& foundAtStaticInitialisation()
{
  return found;
}

float valenceOfASmilingPerson()
{
  const ko::SystemClock::time_point noon(boost::chrono::hours(12 + 24 * 18262));
  ko::ManualClock clock(noon);
  const ko::ScopedClockSource scope(clock);
  KV::Expressions joy;
  joy.joy = {0.9f, 1.f};
  KV::PersonObservation observation;
  observation.smile = KV::Timestamped<KV::Smile>(noon, KV::Smile(0.9f, 1.f));
  observation.expressions = KV::Timestamped<KV::Expressions>(noon, joy);
  KV::Person person;
  person.update(observation);
  return person.personState.personValence().value;
}
