#include <skeigiot/forceobserver.hpp>

#include "forcewatch.hpp"

#include <utility>

namespace KV
{

__thread const ScopedForceObserver* ForceWatch::_observer = nullptr;

void ForceWatch::show(Quantity quantity, float target, float weight, float before, float after, std::string_view source)
{
  if (_observer->_onForce)
    _observer->_onForce({quantity, target, weight, before, after, source, ko::SystemClock::now()});
}

void ForceWatch::show(ko::human::AttentionState from, ko::human::AttentionState to, ZoneEvidence evidence)
{
  if (_observer->_onZoneChange)
    _observer->_onZoneChange({from, to, evidence, ko::SystemClock::now()});
}

ScopedForceObserver::ScopedForceObserver(OnForce onForce, OnZoneChange onZoneChange)
  : _onForce(std::move(onForce)), _onZoneChange(std::move(onZoneChange)), _outer(ForceWatch::_observer)
{
  ForceWatch::_observer = this;
}

ScopedForceObserver::~ScopedForceObserver()
{
  ForceWatch::_observer = _outer;
}

}  // namespace KV
