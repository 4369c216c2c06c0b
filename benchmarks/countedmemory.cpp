#include "countedmemory.hpp"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<std::size_t> inUse{0};

}  // namespace

namespace benchmarks
{

std::size_t bytesInUse()
{
  return inUse;
}

}  // namespace benchmarks

// The operators for arrays, and those with a size, call these two.

void* operator new(std::size_t size)
{
  void* const block = std::malloc(size);
  if (block == nullptr)
    throw std::bad_alloc();
  inUse += malloc_usable_size(block);
  return block;
}

void operator delete(void* block) noexcept
{
  if (block == nullptr)
    return;
  inUse -= malloc_usable_size(block);
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
  operator delete(block);
}
