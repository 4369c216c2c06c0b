#pragma once

#include "statedigest.hpp"

#include <cstdint>
#include <iomanip>
#include <ostream>
#include <string_view>

namespace benchmarks
{

/// The fingerprint of all states of one source.
class DigestLine
{
public:
  void add(const KV::Person& person)
  {
    benchmarks::add(_digest, person);
    ++_states;
  }

  /// Writes the line "<fingerprint> <number of states> <name>".
  void write(std::ostream& stream, std::string_view name) const
  {
    stream << std::hex << std::setw(16) << std::setfill('0') << _digest.value() << std::dec << ' ' << _states << ' '
           << name << '\n';
  }

private:
  Digest _digest;
  std::int64_t _states = 0;
};

}  // namespace benchmarks
