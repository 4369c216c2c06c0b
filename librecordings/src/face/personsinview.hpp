#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace KV::recordings
{

/// Records who was seen in each cycle, and so knows who is missing.
class PersonsInView
{
public:
  /// A person is reported as missing for so many cycles in a row; by then the estimate has faded.
  static constexpr int longestAbsence = 300;

  /// Records that the person is seen in this cycle; returns false if that was recorded already.
  bool see(std::int32_t person);

  /// Ends the cycle, and returns the persons who were seen before but not in it, in ascending order.
  std::vector<std::int32_t> endCycle();

  /// Reports the person as missing no longer.
  void forget(std::int32_t person) { _cyclesMissed.erase(person); }

  bool empty() const { return _cyclesMissed.empty(); }

private:
  std::map<std::int32_t, int> _cyclesMissed;  // -1 in the cycle in which the person is seen
};

}  // namespace KV::recordings
