#pragma once

#include <cstddef>
#include <cstdint>

/// \file
/// How much of an input is taken in: the one list of the limits, which SECURITY.md explains.
///
/// Memory and temporary files stay in proportion to the size of the input, plus a constant.

/// The limits of inputs. Where an input is beyond one, an error or a warning says so.
namespace KV::recordings::limits
{

constexpr std::size_t mebibyte = std::size_t{1} << 20U;  ///< [bytes]

/// \name Texts
/// @{
constexpr std::size_t longestLine = 16 * mebibyte;     ///< [bytes] of CSV or JSON, and an object of JSON
constexpr std::size_t mostFields = 10000;              ///< of a row of CSV; there are tables with some thousand columns
constexpr std::size_t mostPersonNames = 10000;         ///< of one recording
constexpr int deepestJson = 16;                        ///< [levels]
constexpr std::size_t mostPartsOfStep = 2000;          ///< of one line of JSON Lines
constexpr std::size_t mostOpenScopes = 100;            ///< of one recording or stream, at once
constexpr std::size_t mostPartsOfObject = 1'000'000;   ///< of one result of MediaPipe
constexpr std::size_t largestMapping = mebibyte;       ///< [bytes]
constexpr std::size_t largestLabels = 32 * mebibyte;   ///< [bytes] of a file of labels
constexpr std::size_t mostFieldsOfLabels = 1'000'000;  ///< of all rows of a file of labels
/// @}

/// \name Bags
/// @{
constexpr std::size_t mostTopics = 10000;                        ///< of one file, read or not
constexpr std::size_t mostFrames = 10000;                        ///< of the tree of frames
constexpr std::size_t mostFaces = 10000;                         ///< that have a number
constexpr int largestMessage = 1 << 20;                          ///< [bytes] those that are read have a few hundred
constexpr std::size_t mostDifferentMessages = 10000;             ///< about persons, which are read in advance
constexpr std::size_t largestDifferentMessages = 16 * mebibyte;  ///< [bytes] of the same together

/// A message takes at least so many bytes of its file; a damaged file may list more.
constexpr std::uintmax_t leastBytesOfMessage = 9;

/// A query takes at most so many steps of SQLite for each byte of the file, and as many for any file.
constexpr std::uintmax_t mostStepsPerByte = 32;
constexpr std::uintmax_t mostStepsOfAnyBag = 4'000'000;  ///< see mostStepsPerByte
/// @}

/// \name Bags of MCAP
/// @{
constexpr std::size_t longestTopicName = 1024;        ///< [bytes] of a topic or a type
constexpr std::size_t largestMixed = 128 * mebibyte;  ///< [bytes] of messages kept for their time
constexpr std::size_t largestBagMetadata = mebibyte;  ///< [bytes] of metadata.yaml
/// @}

/// \name Packed files
/// @{
constexpr std::size_t largestWindow = 64 * mebibyte;  ///< [bytes] that zstd may refer back to
/// @}

/// \name Packed bags
/// The temporary file that holds a bag packed by gzip or zstd, and the chunks of MCAP together, have at most so many
/// bytes for each byte of the file, and as many for any file.
/// @{
constexpr std::uintmax_t mostUnpackedPerByte = 100;             ///< [bytes]
constexpr std::uintmax_t mostUnpackedOfAnyBag = 64 * mebibyte;  ///< [bytes]
/// @}

}  // namespace KV::recordings::limits
