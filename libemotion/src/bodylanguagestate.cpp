#include <skeigiot/bodylanguagestate.hpp>

#include <skeigiot/personmemory.hpp>

#include "bodylanguagestateprivate.hpp"
#include "personmemoryprivate.hpp"

#include <ko/log.hpp>

#include <boost/smart_ptr/make_shared.hpp>

#include <ostream>
#include <stdexcept>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("kvmood.bodylanguagestate");

}  // namespace

BodyLanguageState::BodyLanguageState() : _p(boost::make_shared<BodyLanguageStatePrivate>()) {}

void BodyLanguageState::update(const PersonMemory& memory)
{
  _p->_update(memory._p->headPostureMemory);
}

BodyLanguageEase BodyLanguageState::bodyLanguageState(BodyLanguageDescription description) const
{
  if (description != BodyLanguageEaseDescription)
    throw std::invalid_argument("This descriptor is not valid.");
  return _p->ease;
}

std::ostream& operator<<(std::ostream& stream, const BodyLanguageState& state)
{
  return stream << state.bodyLanguageState(BodyLanguageEaseDescription);
}

}  // namespace KV
