#include "allocationcounter.hpp"

#include <cerrno>
#include <cstddef>

#include <malloc.h>

/// \file
/// The same as allocationfault.cpp for `malloc`, which `new` calls as well: for libraries in C. The sanitizers have a
/// `malloc` of their own, so their builds have no program with this file.

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
  faults::discount(memory);
  __libc_free(memory);
}
}
