#pragma once

#include <cstddef>

/// \file
/// Code that allocationfault.cpp and mallocfault.cpp share: each program has one of them.

namespace faults
{

/// Counts an allocation of this thread; returns whether it is allowed, and sets errno if it is not.
bool admit();

/// Counts memory that was allocated, and returns it; null: it was not.
void* counted(void* memory);

/// Counts memory that is freed; null counts for nothing.
void discount(const void* memory);

}  // namespace faults
