#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/session/changes.hpp>

#include <array>
#include <string>
#include <string_view>

namespace KV::session
{

/// All quantities, in the order in which they are shown.
constexpr std::array<KV::Quantity, 6> allQuantities{
    KV::ValenceQuantity,           KV::UnsmoothedValenceQuantity,           KV::AttentionQuantity,
    KV::ValenceConfidenceQuantity, KV::UnsmoothedValenceConfidenceQuantity, KV::AttentionConfidenceQuantity};

/// Returns "valence", "unsmoothed valence confidence", and so on.
SKEIGIOT_API std::string quantityName(KV::Quantity quantity);

/// Returns what decided on a zone, in plain words: "gaze", "no head or gaze".
SKEIGIOT_API std::string evidenceName(KV::ZoneEvidence evidence);

/// Returns the source in plain words, for a sentence: "words" for "Asr emotion"; a source that is not known stays as it
/// is.
///
/// The library fixes the texts of KV::Force::source; the command, the page and the Python module show these instead.
SKEIGIOT_API std::string plainSource(const std::string& source);

/// Returns the same words with a capital letter, for a table: "Words".
SKEIGIOT_API std::string sourceName(std::string_view source);

/// Returns the source of the changes in plain words, with the mood it pulled to if it has one: "touch (positive)".
SKEIGIOT_API std::string describeSource(const SourceChange& change);

}  // namespace KV::session
