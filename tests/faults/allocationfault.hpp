#pragma once

#include <cstddef>

namespace faults
{

/// While it lives, one allocation by `new` on the thread that made it fails: that with the number `which`, from 0.
///
/// Every form of `new` of the program counts, those in its shared libraries included.
class AllocationFault
{
public:
  explicit AllocationFault(std::size_t which);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Tells whether the allocation was tried, and failed.
  bool happened() const;
};

/// Returns how many objects of `new` are alive, whichever thread made them.
std::ptrdiff_t livingAllocations();

/// Returns how often this thread has called `new`.
std::size_t allocationCount();

}  // namespace faults
