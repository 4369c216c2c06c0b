#include <skeigiot/person.hpp>

#include <ko/log.hpp>

#include <ostream>
#include <string>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.person");

}  // namespace

Person::Person() = default;

Person::Person(std::int32_t id) : personID(id) {}

void Person::update(const PersonObservation& observation)
{
  updateMemory(observation);
  _updateOnlineModels(observation);
}

void Person::updateMemory(const PersonObservation& observation)
{
  personMemory.add(observation);
}

void Person::_updateOnlineModels(const PersonObservation& observation)
{
  personState.bodyLanguageState().update(personMemory);
  personState._update(observation, personMemory);
}

void Person::decreaseSinceNotSeen()
{
  personState.decreaseSinceNotSeen();
}

void Person::setUserSessionID(std::int32_t id)
{
  personID = id;
}

void Person::setFrequencyGaze(float hz)
{
  personState.setFrequencyGaze(hz);
}

void Person::setFrequencyFace(float hz)
{
  personState.setFrequencyFace(hz);
}

std::pair<PleasureState, ko::human::AttentionState> Person::personDescriptor() const
{
  return {personState.personPleasureState(), personState.personAttentionState()};
}

std::ostream& operator<<(std::ostream& stream, const Person& person)
{
  return stream << "Person (US#" << std::to_string(person.personID) << ") ";
}

}  // namespace KV
