#pragma once

#include "csvfacefile.hpp"
#include "csvpersons.hpp"
#include "facerows.hpp"
#include "openfacecolumns.hpp"
#include "recording.hpp"
#include "scoretable.hpp"

#include <optional>
#include <string>
#include <vector>

namespace tools
{

/// The rows of a CSV file of OpenFace 2, or of an older version.
class OpenFaceRows : public FaceRows
{
public:
  /// Opens the file and reads its header.
  ///
  /// \throws RecordingError if it cannot be read.
  OpenFaceRows(const std::string& path, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const std::string& path() const override { return _file.path(); }
  std::size_t lineNumber() const override { return _file.lineNumber(); }
  double progress() const override { return _file.progress(); }
  Fields fields() const override;
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::vector<std::string> takeWarnings() override { return _persons.takeWarnings(); }
  RecordingColumns columns() const override { return _file.header().columns(); }

private:
  FaceRow _readRow();

  ReadingOptions _options;
  ScoreReadings _units;
  CsvFaceFile _file;
  OpenFaceColumns _columns;
  CsvPersons _persons;
  FrameCounter _frames;
};

}  // namespace tools
