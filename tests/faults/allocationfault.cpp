#include "allocationfault.hpp"

#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

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

/// Counts an allocation; returns whether it is allowed.
bool admit()
{
  ++allocations;
  if (failing == none || failing-- > 0)
    return true;
  failing = kind == Shortage::AllFromThere ? 0 : none;
  failed = true;
  return false;
}

void* allocate(std::size_t size)
{
  void* const memory = admit() ? std::malloc(size > 0 ? size : 1) : nullptr;
  living += memory != nullptr ? 1 : 0;
  return memory;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment)
{
  const auto boundary = static_cast<std::size_t>(alignment);
  void* const memory = admit() ? std::aligned_alloc(boundary, (size + boundary) / boundary * boundary) : nullptr;
  living += memory != nullptr ? 1 : 0;
  return memory;
}

void* orThrow(void* memory)
{
  if (memory == nullptr)
    throw std::bad_alloc();
  return memory;
}

void release(void* memory)
{
  living -= memory != nullptr ? 1 : 0;
  std::free(memory);
}

}  // namespace

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

// A sanitizer's own forms of these do not call each other, so all of them are replaced.
// clang-format off
void* operator new(std::size_t size) { return faults::orThrow(faults::allocate(size)); }
void* operator new[](std::size_t size) { return faults::orThrow(faults::allocate(size)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return faults::allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return faults::allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return faults::orThrow(faults::allocateAligned(size, alignment)); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return faults::orThrow(faults::allocateAligned(size, alignment)); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return faults::allocateAligned(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept { return faults::allocateAligned(size, alignment); }

void operator delete(void* memory) noexcept { faults::release(memory); }
void operator delete[](void* memory) noexcept { faults::release(memory); }
void operator delete(void* memory, std::size_t) noexcept { faults::release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { faults::release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { faults::release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { faults::release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { faults::release(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { faults::release(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { faults::release(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { faults::release(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { faults::release(memory); }
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept { faults::release(memory); }
// clang-format on
