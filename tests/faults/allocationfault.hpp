#pragma once

#include <cstddef>

namespace faults
{

/// While it lives, one allocation by `new` on its thread fails: the one with the number `which`, from 0.
///
/// Every form of `new` of the program counts, including those in its shared libraries.
class AllocationFault
{
public:
  explicit AllocationFault(std::size_t which);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Returns whether the allocation was tried, and failed.
  bool happened() const;
};

/// Returns how many objects of `new` are alive, on all threads together.
std::ptrdiff_t livingAllocations();

/// Returns how often this thread has called `new`.
std::size_t allocationCount();

}  // namespace faults
