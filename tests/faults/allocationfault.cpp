#include "allocationcounter.hpp"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace faults
{

namespace
{

void* allocate(std::size_t size)
{
  return admit() ? counted(std::malloc(size > 0 ? size : 1)) : nullptr;
}

void* allocateAligned(std::size_t size, std::align_val_t alignment)
{
  const auto boundary = static_cast<std::size_t>(alignment);
  return admit() ? counted(std::aligned_alloc(boundary, (size + boundary) / boundary * boundary)) : nullptr;
}

void* orThrow(void* memory)
{
  if (memory == nullptr)
    throw std::bad_alloc();
  return memory;
}

void release(void* memory)
{
  discount(memory);
  std::free(memory);
}

}  // namespace

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
