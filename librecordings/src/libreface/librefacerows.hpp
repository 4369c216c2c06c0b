#pragma once

#include "csv/csvpersons.hpp"
#include "face/csvfacerows.hpp"
#include "face/csvscores.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace KV::recordings
{

/// Returns whether the file begins with a header of LibreFace.
bool looksLikeLibreFace(const std::string& head);

/// The rows of a CSV file of LibreFace, of which the intensities of action units are read.
///
/// The angles of the head are not: nobody documents their signs. The activated action units have no intensity, and the
/// facial expression has no score.
class LibreFaceRows : public CsvFaceRows
{
public:
  /// Takes an opened file and reads its header.
  ///
  /// \throws Error if it cannot be read.
  LibreFaceRows(InputFile input, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const FaceAdapter& adapter() const override { return _adapter; }
  Fields fields() const override;
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::string nameOf(std::int32_t person) const override { return _persons.nameOf(person); }

private:
  ReadingOptions _options;
  FaceAdapter _adapter;
  std::optional<std::size_t> _frame;
  std::optional<std::size_t> _time;
  ScoreColumns _actionUnits;
  CsvPersons _persons;
  FrameCounter _frames;
};

}  // namespace KV::recordings
