#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ko
{

/// Something in a CBOR document that must not reach the library's parser.
struct CborFault
{
  std::size_t offset;   ///< of the item, in bytes; everything before it may be parsed
  std::string message;  ///< what is wrong
};

/// Returns the first fault of the document on which the library's parser would fail, or which it would not notice.
///
/// The parser calls itself for every chunk of a string of indefinite length, also for chunks in chunks; takes the
/// length 2^64 - 1 for "indefinite"; and wraps negative integers that are below the range of 64 bits. This check looks
/// at the heads of all items one after the other, without regard to nesting, and allocates nothing.
std::optional<CborFault> findCborFault(const std::vector<std::uint8_t>& bytes);

}  // namespace ko
