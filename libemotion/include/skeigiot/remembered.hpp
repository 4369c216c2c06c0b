#pragma once

#include <skeigiot/timestamped.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>

namespace KV
{

/// The remembered readings of one kind: a copy, see PersonMemory::remembered().
template <typename T>
struct Remembered
{
  std::size_t count = 0;                     ///< how many records are remembered
  boost::optional<Timestamped<T>> youngest;  ///< the record with the greatest time; none if the count is 0
};

}  // namespace KV
