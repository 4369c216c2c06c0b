#pragma once

#include <skeigiot/session/explanation.hpp>
#include <skeigiot/session/forcenames.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>

namespace explaintests
{

/// The estimate of one person, rebuilt only from the forces that acted on it.
class RebuiltEstimate
{
public:
  /// Applies all forces of an update, and returns how the result differs from the library's; empty if no bit differs.
  std::string apply(const KV::session::Explanation& explanation)
  {
    _difference.clear();
    for (const KV::session::ActedForce& force : explanation.forces)
      _apply(force);
    for (const KV::session::SeenZoneChange& change : explanation.zoneChanges)
    {
      if (change.from != _zone)
        _difference += "the zone was another before it changed; ";
      _zone = change.to;
    }
    _compare(explanation.after);
    return _difference;
  }

private:
  void _apply(const KV::session::ActedForce& force)
  {
    float& value = _values[force.quantity];
    _compare(KV::session::quantityName(force.quantity) + " before " + force.source, value, force.before);
    const bool isValence = force.quantity == KV::ValenceQuantity || force.quantity == KV::UnsmoothedValenceQuantity;
    value = std::clamp(value + force.weight * (force.target - value), isValence ? -1.f : 0.f, 1.f);
    _compare(KV::session::quantityName(force.quantity) + " after " + force.source, value, force.after);
  }

  void _compare(const KV::session::Snapshot& after)
  {
    _compare("valence", _values[KV::ValenceQuantity], after.valence.value);
    _compare("valence confidence", _values[KV::ValenceConfidenceQuantity], after.valence.confidence);
    _compare("unsmoothed valence confidence", _values[KV::UnsmoothedValenceConfidenceQuantity],
             after.unsmoothedValenceBinary.confidence);
    _compare("attention", _values[KV::AttentionQuantity], after.attention.value);
    _compare("attention confidence", _values[KV::AttentionConfidenceQuantity], after.attention.confidence);
    if (_zone != after.zone)
      _difference += "zone; ";
  }

  void _compare(const std::string& what, float rebuilt, float estimate)
  {
    if (_bits(rebuilt) != _bits(estimate))
      _difference += what + " is " + std::to_string(estimate) + ", not " + std::to_string(rebuilt) + "; ";
  }

  static std::uint32_t _bits(float number)
  {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
  }

  std::map<KV::Quantity, float> _values;  // all 0 at first
  ko::human::AttentionState _zone = ko::human::AttentionState::Unknown;
  std::string _difference;
};

}  // namespace explaintests
