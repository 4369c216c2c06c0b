#pragma once

#include <cstddef>

/// Limits of a document, in JSON and CBOR; a document that exceeds one is refused with a TypeError.
namespace ko::wirelimits
{

constexpr std::size_t depth = 64;           ///< lists, maps and structs inside each other; for the writer as well
constexpr std::size_t bytes = 16UL << 20U;  ///< length of a document
constexpr std::size_t values = 1UL << 20U;  ///< values in a document, keys not counted

}  // namespace ko::wirelimits
