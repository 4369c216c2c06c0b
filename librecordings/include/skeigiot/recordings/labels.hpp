#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/labelspan.hpp>
#include <skeigiot/recordings/labeltrack.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The contents of a file of labels, which people gave to a recording.
struct SKEIGIOT_API Labels
{
  std::string format;                 ///< one of labelFormats()
  std::vector<LabelSpan> spans;       ///< in the order of the file
  std::vector<LabelTrack> tracks;     ///< in the order in which they begin in the file
  std::vector<std::string> warnings;  ///< on what was left out: the first mostWarnings, and how many more there are

  /// Further warnings are only counted.
  static constexpr std::size_t mostWarnings = 10;
};

/// Returns the names of the formats that readLabels() reads, in the order of detection:
///
/// - "elan": ELAN .eaf. The participant of a tier is the person, its annotator the coder. Times that are missing are
///   interpolated. Annotations that refer to another take its time, and share it evenly if there are several in a tier.
/// - "praat": Praat TextGrid, long or short text. Intervals without text are no labels.
/// - "boris": events of BORIS, CSV or TSV, aggregated or tabular. The subject is the person, the behaviour the label.
/// - "bids": events of BIDS, TSV with onset and duration. The trial_type is the label or, without one, the value. An
///   event of duration n/a has none.
/// - "csv": a table with the columns start, end and value (or label), or time with value, valence or attention; with
///   person, coder and tier where there are several. Between commas, semicolons or tabs.
/// - "audacity": label track of Audacity.
///
/// All may be UTF-8 or, with a byte order mark, UTF-16; and compressed by gzip or zstd.
SKEIGIOT_API const std::vector<std::string>& labelFormats();

/// Reads a file of labels, whose format is found from its contents.
///
/// \throws Error that names file, line and field if the file cannot be read, no format fits, or something in it is
/// wrong.
SKEIGIOT_API Labels readLabels(const std::string& path);

}  // namespace KV::recordings
