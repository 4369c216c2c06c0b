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

/// Returns the first fault of the document that the parser of the library would not see itself, or fall over.
///
/// The parser calls itself for every chunk of a string of indefinite length, chunks in chunks included; takes the
/// length 2^64 - 1 for "indefinite"; and wraps negative integers that are below the range of 64 bits. Looks at the
/// heads of all items one after the other, without regard to what is inside what, and allocates nothing.
std::optional<CborFault> findCborFault(const std::vector<std::uint8_t>& bytes);

}  // namespace ko
