#pragma once

#include <cstddef>

namespace faults
{

/// Which allocations fail, from the one with the given number on.
enum class Shortage
{
  OneAllocation,  ///< only that one, as if a large block was wanted
  AllFromThere    ///< that one and all later ones, as if no memory was left
};

/// While it lives, an allocation on its thread fails: the one with the number `which`, from 0, and perhaps later ones.
///
/// In programs with allocationfault.cpp, every form of `new` counts, including those in shared libraries. In programs
/// with mallocfault.cpp, every form of `malloc` counts, so those of libraries in C as well.
class AllocationFault
{
public:
  explicit AllocationFault(std::size_t which, Shortage shortage = Shortage::OneAllocation);
  ~AllocationFault();
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;

  /// Returns whether the allocation was tried, and failed.
  bool happened() const;
};

/// Returns how many allocations are alive, on all threads together.
std::ptrdiff_t livingAllocations();

/// Returns how often this thread has allocated.
std::size_t allocationCount();

}  // namespace faults
