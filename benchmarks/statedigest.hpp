#pragma once

#include "digest.hpp"

#include <skeigiot/person.hpp>

namespace benchmarks
{

/// Adds all numbers of a person's state, the results of all its queries, and every remembered reading.
void add(Digest& digest, const KV::Person& person);

}  // namespace benchmarks
