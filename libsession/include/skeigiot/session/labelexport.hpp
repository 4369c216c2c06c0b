#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/labelwriter.hpp>
#include <skeigiot/session/exportformat.hpp>

#include <string>

namespace KV::session
{

/// Returns whether exports of this name are files of labels, which coders open in their own program: "eaf", a document
/// of ELAN, or "audacity", a label track.
SKEIGIOT_API bool isLabelExport(const std::string& format);

/// Returns the export format "eaf" or "audacity", whose files also have the labels of a coder's file, see
/// recordings::LabelWriter::keep(). exportFormat() returns the same formats without labels of coders.
///
/// The export holds for each person, by tiers:
///
/// - "zone: anna (person 1)": the zones, a label for as long as one lasts; none while it is unknown
/// - "pleasure: ...": the pleasure states, in the same way
/// - "valence: ..." and "attention: ...": the mean of each second with two decimals; none where it is unknown
/// - "verdict: ...": the verdict on each scope, such as "greeting: positive"
///
/// A zone lasts from the update that reached it to the update that left it. All is kept in memory until the session
/// ends: a label for each second, and for each change.
///
/// \param coders  path of the coder's file; empty: none
/// \throws std::invalid_argument if isLabelExport() is false for the name.
/// \throws recordings::Error if the file cannot be read.
SKEIGIOT_API ExportFormat labelExport(const std::string& format, const std::string& coders);

}  // namespace KV::session
