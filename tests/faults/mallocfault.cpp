#include "allocationfault.hpp"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <limits>

#include <malloc.h>

/// \file
/// The same as allocationfault.cpp for `malloc`, which `new` calls as well: for libraries in C. The sanitizers have a
/// `malloc` of their own, so their builds have no program with this file.

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
  errno = ENOMEM;
  return false;
}

void* counted(void* memory)
{
  living += memory != nullptr ? 1 : 0;
  return memory;
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

// The C library's functions under the names that it has for programs that replace them.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t boundary, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size)
{
  return faults::admit() ? faults::counted(__libc_malloc(size)) : nullptr;
}
void* calloc(std::size_t count, std::size_t size)
{
  return faults::admit() ? faults::counted(__libc_calloc(count, size)) : nullptr;
}
void* realloc(void* memory, std::size_t size)
{
  if (!faults::admit())
    return nullptr;
  void* const moved = __libc_realloc(memory, size);
  return memory == nullptr ? faults::counted(moved) : moved;
}
void* memalign(std::size_t boundary, std::size_t size)
{
  return faults::admit() ? faults::counted(__libc_memalign(boundary, size)) : nullptr;
}
void* aligned_alloc(std::size_t boundary, std::size_t size)
{
  return memalign(boundary, size);
}
int posix_memalign(void** memory, std::size_t boundary, std::size_t size)
{
  *memory = memalign(boundary, size);
  return *memory == nullptr ? ENOMEM : 0;
}
void free(void* memory)
{
  faults::living -= memory != nullptr ? 1 : 0;
  __libc_free(memory);
}
}
