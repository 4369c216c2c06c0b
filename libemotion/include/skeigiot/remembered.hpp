#pragma once

#include <skeigiot/timestamped.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>

namespace KV
{

/// What a memory holds of one kind of reading: a copy, see PersonMemory::remembered().
template <typename T>
struct Remembered
{
  std::size_t count = 0;                     ///< how many records are remembered
  boost::optional<Timestamped<T>> youngest;  ///< the record with the greatest time; none if the count is 0
};

}  // namespace KV
