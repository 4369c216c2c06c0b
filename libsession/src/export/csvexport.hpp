#pragma once

#include <skeigiot/session/updateexport.hpp>

#include <ostream>
#include <string>

namespace KV::session
{

/// Writes every update as a line of comma-separated values.
///
/// Floats have the shortest text that reads back as the same number; truth values are 0 and 1. No field needs quotes.
class CsvExport : public UpdateExport
{
public:
  /// Writes the header of such a file.
  static void writeHeader(std::ostream& stream);

  /// The stream must outlive the export.
  explicit CsvExport(std::ostream& stream) : _stream(stream) {}

  void personUpdated(const Snapshot& snapshot) override;

private:
  std::ostream& _stream;
  std::string _line;  // kept for its memory
};

}  // namespace KV::session
