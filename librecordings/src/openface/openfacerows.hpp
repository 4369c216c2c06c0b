#pragma once

#include "csv/csvpersons.hpp"
#include "face/csvfacerows.hpp"
#include "openface/openfacecolumns.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The rows of a CSV file of OpenFace 2, or of an older version.
class OpenFaceRows : public CsvFaceRows
{
public:
  /// Takes an opened file and reads its header.
  ///
  /// \throws Error if it cannot be read.
  OpenFaceRows(InputFile input, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const FaceAdapter& adapter() const override { return _adapter; }
  Fields fields() const override;
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::string nameOf(std::int32_t person) const override { return _persons.nameOf(person); }

private:
  FaceRow _readRow();

  ReadingOptions _options;
  FaceAdapter _adapter;
  OpenFaceColumns _columns;
  CsvPersons _persons;
  FrameCounter _frames;
};

}  // namespace KV::recordings
