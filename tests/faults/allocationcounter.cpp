#include "allocationcounter.hpp"

#include "allocationfault.hpp"

#include <atomic>
#include <cerrno>
#include <limits>

namespace faults
{

namespace
{

constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

std::atomic<std::ptrdiff_t> living{0};  // of all threads
thread_local std::size_t allocations = 0;
thread_local std::size_t failing = none;  // how many more allocations until the one that fails
thread_local bool failed = false;
thread_local Shortage kind = Shortage::OneAllocation;

}  // namespace

bool admit()
{
  ++allocations;
  if (failing == none || failing-- > 0)
    return true;
  failing = kind == Shortage::AllFromThere ? 0 : none;
  failed = true;
  errno = ENOMEM;
  return false;
}

void* counted(void* memory)
{
  living += memory != nullptr ? 1 : 0;
  return memory;
}

void discount(const void* memory)
{
  living -= memory != nullptr ? 1 : 0;
}

AllocationFault::AllocationFault(std::size_t which, Shortage shortage)
{
  failed = false;
  kind = shortage;
  failing = which;
}

AllocationFault::~AllocationFault()
{
  failing = none;
}

bool AllocationFault::happened() const
{
  return failed;
}

std::ptrdiff_t livingAllocations()
{
  return living;
}

std::size_t allocationCount()
{
  return allocations;
}

}  // namespace faults
