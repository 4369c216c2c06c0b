#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace KV::recordings
{

/// Keeps count of who was seen in which cycle, so that whoever was not can be told.
class PersonsInView
{
public:
  /// For so many cycles in a row a person is told missing; after that nothing is left that could fade.
  static constexpr int longestAbsence = 300;

  /// Notes that the person is seen in this cycle; returns false if that was noted already.
  bool see(std::int32_t person);

  /// Ends the cycle, and returns whoever was seen before and not in it, in ascending order.
  std::vector<std::int32_t> endCycle();

  bool empty() const { return _cyclesMissed.empty(); }

private:
  std::map<std::int32_t, int> _cyclesMissed;  // -1 in the cycle in which the person is seen
};

}  // namespace KV::recordings
