#pragma once

#include <skeigiot/recordings/inputlimits.hpp>

#include <cstddef>

/// \file
/// The limits of labels that are written or become scopes, of scopes, of studies, of transcripts and of recordings of
/// the Lab Streaming Layer: the continuation of inputlimits.hpp, apart from it since few readers need it.

namespace KV::recordings::limits
{

/// \name Labels
/// @{
constexpr int deepestXml = 100;                     ///< [levels] of a document of ELAN that is written again
constexpr std::size_t mostScopesOfLabels = 10'000;  ///< that labels of one file make
constexpr std::size_t mostLabelsAtOnce = 1000;      ///< of those that become scopes, at any moment
constexpr std::size_t mostCoders = 100;             ///< of one quantity, since each is compared with each
/// @}

/// \name Scopes
/// @{
constexpr std::size_t mostPersonsInScopes = 100'000;  ///< each in each scope, and one more for each update
/// @}

/// \name Study files
/// @{
constexpr std::size_t largestStudy = 64 * mebibyte;    ///< [bytes] some 100,000 sessions by name
constexpr std::size_t mostDotsInLineOfStudy = 200;     ///< each may begin a level, which takes a part of the stack
constexpr std::size_t mostPatternsOfStudy = 1000;      ///< each is compared with each file
constexpr std::size_t longestPatternOfStudy = 4096;    ///< [bytes]
constexpr std::size_t mostEntriesOfStudy = 1'000'000;  ///< files and folders in the folder of a study
/// @}

/// \name Transcripts of Whisper
/// @{
constexpr std::size_t mostSpansOfSpeech = 2'000'000;  ///< words or segments
constexpr std::size_t mostSpeakers = 100;             ///< persons
/// @}

/// \name Recordings of the Lab Streaming Layer (XDF)
/// @{
constexpr std::size_t mostXdfStreams = 1000;        ///< of one file
constexpr std::size_t mostXdfChannels = 100'000;    ///< of one stream
constexpr std::size_t largestXdfHeader = mebibyte;  ///< [bytes] of a stream
constexpr std::size_t longestXdfText = 65'536;      ///< [bytes] of a marker
constexpr std::size_t mostXdfValues = 8'388'608;    ///< of the channels that are read, with times: 8 bytes each
/// @}

}  // namespace KV::recordings::limits
