#pragma once

#include "csv/csvpersons.hpp"
#include "face/csvfacerows.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/mediapipeface.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether a file with these first bytes is a table with a column for each blendshape.
bool looksLikeBlendshapeCsv(const std::string& head);

/// The rows of a CSV file with a column for each blendshape of the MediaPipe FaceLandmarker, by its name, and
/// optionally 16 columns for the transformation matrix.
class BlendshapeCsvRows : public CsvFaceRows
{
public:
  /// Takes an opened file and reads its header.
  ///
  /// \throws Error if it cannot be read.
  BlendshapeCsvRows(InputFile input, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const FaceAdapter& adapter() const override { return _adapter; }
  Fields fields() const override;
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::string nameOf(std::int32_t person) const override { return _persons.nameOf(person); }

private:
  // Seconds in a column, or milliseconds.
  struct TimeColumn
  {
    std::string name;
    std::size_t column;
    bool isMilliseconds;
  };

  static std::optional<TimeColumn> _findTime(const CsvHeader& header);
  static ColumnGroup<16> _findMatrix(const CsvHeader& header);
  FaceRow _readRow();
  Frame _readFrame(const CsvNumbers& numbers);
  std::optional<std::array<double, 16>> _readMatrix(const CsvNumbers& numbers) const;

  ReadingOptions _options;
  FaceAdapter _adapter;
  std::optional<std::size_t> _frame;
  std::optional<TimeColumn> _time;
  std::optional<std::size_t> _confidence;
  std::vector<std::optional<std::size_t>> _scores;
  ColumnGroup<16> _matrix;
  CsvPersons _persons;
  FrameCounter _frames;
};

}  // namespace KV::recordings
