#pragma once

#include <skeigiot/recordings/labelspan.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Refuses a document that labels cannot be added to.
///
/// \throws Error if its top is another element, or it is nested deeper than limits::deepestXml: it would take too much
/// stack.
void refuseUnfitElan(const std::string& path, const std::string& text);

/// Writes a document of ELAN.
///
/// \param kept    another document, which readElanLabels() reads, or nothing: all of it is written, too, except the
///                tiers that this function wrote
/// \param own     labels of this program
/// \param others  labels of coders
void writeElan(std::ostream& stream, const std::string& kept, const std::vector<LabelSpan>& own,
               const std::vector<LabelSpan>& others);

}  // namespace KV::recordings
