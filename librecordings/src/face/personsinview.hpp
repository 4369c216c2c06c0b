#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace KV::recordings
{

/// Notes who was seen in each cycle, and so knows who is missing.
class PersonsInView
{
public:
  /// For so many cycles in a row a person is reported as missing; by then the estimate has faded.
  static constexpr int longestAbsence = 300;

  /// Notes that the person is seen in this cycle; returns false if that was noted already.
  bool see(std::int32_t person);

  /// Ends the cycle, and returns the persons who were seen before but not in it, in ascending order.
  std::vector<std::int32_t> endCycle();

  bool empty() const { return _cyclesMissed.empty(); }

private:
  std::map<std::int32_t, int> _cyclesMissed;  // -1 in the cycle in which the person is seen
};

}  // namespace KV::recordings
