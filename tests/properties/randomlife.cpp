#include "randomlife.hpp"

#include "fingerprint.hpp"

#include <functional>

namespace properties
{

std::size_t fingerprintOfLife(unsigned int seed, support::nanoseconds length)
{
  RandomLife life(seed, length);
  KV::Person person(7);
  std::size_t hash = 0;
  while (life.next())
  {
    life.letLive(person);
    hash = hash * 31 + std::hash<std::string>()(Fingerprint::of(person));
  }
  return hash;
}

}  // namespace properties
