#include <skeigiot/personmemory.hpp>

#include "personmemoryprivate.hpp"

#include <ko/log.hpp>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.personmemory");

}  // namespace

PersonMemory::PersonMemory() : _p(new PersonMemoryPrivate) {}

PersonMemory::~PersonMemory() = default;

void PersonMemory::add(const PersonObservation& observation)
{
  _p->add(observation);
}

}  // namespace KV
