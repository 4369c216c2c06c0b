#pragma once

#include "digest.hpp"

#include <skeigiot/person.hpp>

namespace benchmarks
{

/// Adds all that a person's state consists of, all that can be asked of it, and every remembered reading.
void add(Digest& digest, const KV::Person& person);

}  // namespace benchmarks
