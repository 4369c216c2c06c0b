#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/labelspan.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Writes files of labels, which coders open in their own program and readLabels() reads.
///
/// \par Thread safety
///   Not synchronised; a const object may be used by several threads.
class SKEIGIOT_API LabelWriter
{
public:
  /// Makes a writer of a format: "elan", a document of ELAN (EAF 3.0), or "audacity", a label track.
  ///
  /// \throws std::invalid_argument "labels are not written as '<format>': expected elan or audacity"
  explicit LabelWriter(const std::string& format);

  /// Keeps the labels of a file, so that they are written as well. All other content is kept, too, if the file is of
  /// the same format: tiers, media, vocabularies. The exception are the tiers that a writer wrote into that file:
  /// new ones take their place. Replaces what an earlier call kept.
  ///
  /// \throws Error as readLabels() does, and if a document of ELAN is nested deeper than limits::deepestXml.
  void keep(const std::string& path);

  /// Writes what is kept, and the spans.
  ///
  /// In a document of ELAN, each tier of the spans is a tier, with the person as its participant and the coder as its
  /// annotator. Times are whole milliseconds from 0 on. A label without duration lasts 1 ms. Labels of a tier that
  /// overlap are spread over several, called "tier", "tier (2)" and so on; so are tiers with names that are taken.
  ///
  /// A label track of Audacity has neither tiers nor persons: each label begins with the name of its tier.
  ///
  /// Characters that the format does not allow become U+FFFD or, line breaks and tabs in Audacity, blanks.
  void write(std::ostream& stream, const std::vector<LabelSpan>& spans) const;

private:
  std::string _format;
  std::string _kept;               // text of a file in the same format
  std::vector<LabelSpan> _others;  // labels of a file in another format
};

}  // namespace KV::recordings
