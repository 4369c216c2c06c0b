#pragma once

#include "csv/csvpersons.hpp"
#include "face/csvfacerows.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/livelinkface.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether a file with these first bytes is a table of Live Link Face.
bool looksLikeLiveLink(const std::string& head);

/// The rows of a CSV file of Live Link Face: the blendshapes of ARKit, and the angles of head and eyes.
class LiveLinkRows : public CsvFaceRows
{
public:
  /// Takes an opened file and reads its header.
  ///
  /// \throws Error if it cannot be read.
  LiveLinkRows(InputFile input, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const FaceAdapter& adapter() const override { return _adapter; }
  Fields fields() const override;
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::string nameOf(std::int32_t person) const override { return _persons.nameOf(person); }

private:
  FaceRow _readRow();
  Frame _readFrame(const CsvNumbers& numbers);
  LiveLinkFace _readFace(const CsvNumbers& numbers) const;

  ReadingOptions _options;
  FaceAdapter _adapter;
  std::size_t _timecode;
  std::size_t _count;
  std::vector<std::optional<std::size_t>> _scores;
  ColumnGroup<3> _head;  // HeadYaw, HeadPitch, HeadRoll
  ColumnGroup<4> _eyes;  // LeftEyeYaw, RightEyeYaw, LeftEyePitch, RightEyePitch
  CsvPersons _persons;
  std::int64_t _row = -1;            // of those so far
  double _midnights = 0.0;           // [s] of the days that have passed
  std::optional<double> _begin;      // [s] of day of the first row
  std::optional<double> _timeOfDay;  // [s] of the row before
};

}  // namespace KV::recordings
