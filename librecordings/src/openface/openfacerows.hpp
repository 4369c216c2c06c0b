#pragma once

#include "csvfacerows.hpp"
#include "csvpersons.hpp"
#include "openfacecolumns.hpp"
#include "recording.hpp"
#include "scoretable.hpp"

#include <optional>
#include <string>
#include <vector>

namespace tools
{

/// The rows of a CSV file of OpenFace 2, or of an older version.
class OpenFaceRows : public CsvFaceRows
{
public:
  /// Opens the file and reads its header.
  ///
  /// \throws RecordingError if it cannot be read.
  OpenFaceRows(const std::string& path, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  Fields fields() const override;
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::vector<std::string> takeWarnings() override { return _persons.takeWarnings(); }

private:
  FaceRow _readRow();

  ReadingOptions _options;
  ScoreReadings _units;
  OpenFaceColumns _columns;
  CsvPersons _persons;
  FrameCounter _frames;
};

}  // namespace tools
