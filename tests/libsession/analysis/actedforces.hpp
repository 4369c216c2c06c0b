#pragma once

#include <skeigiot/session/explanation.hpp>

namespace explaintests
{

/// A force that acts on `before` by the rule of all forces.
inline KV::session::ActedForce acted(const char* source, KV::Quantity quantity, float target, float weight,
                                     float before)
{
  KV::Force force{};
  force.source = source;
  force.quantity = quantity;
  force.target = target;
  force.weight = weight;
  force.before = before;
  force.after = before + weight * (target - before);
  return KV::session::ActedForce(force);
}

}  // namespace explaintests
