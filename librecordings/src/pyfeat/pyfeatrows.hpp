#pragma once

#include "csv/csvpersons.hpp"
#include "face/csvfacerows.hpp"
#include "pyfeat/pyfeatangles.hpp"
#include "pyfeat/pyfeatcolumns.hpp"
#include "recording/lookahead.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/pyfeatface.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The rows of a table of py-feat (Fex, as CSV).
///
/// Its versions differ in units and signs, and it may name no persons: so the first rows are examined before the first
/// one is returned.
class PyFeatRows : public CsvFaceRows
{
public:
  /// Takes an opened file, and examines its header and first rows.
  ///
  /// \throws Error if it cannot be read.
  PyFeatRows(InputFile input, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const FaceAdapter& adapter() const override { return _adapter; }
  Fields fields() const override;
  AssumedRate assumedRate() const override { return _assumedRate; }
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::string nameOf(std::int32_t person) const override;
  std::vector<std::string> takeWarnings() override;

private:
  // A row whose units and person are not decided yet.
  struct Raw
  {
    FaceRow row;
    PyFeatFace face;
    PyFeatAngles angles;
    std::string identity;
    std::optional<std::int64_t> second;
  };

  std::optional<Raw> _readRaw();
  void _readFace(const CsvNumbers& numbers, Raw& raw);
  void _learnFromFirstRows();
  std::int32_t _personOf(const Raw& raw);
  Error::Place _placeOf(const Raw& raw, const std::string& field) const;

  ReadingOptions _options;
  FaceAdapter _adapter;
  PyFeatColumns _columns;
  CsvPersons _chosenPersons;
  FrameCounter _frames;

  PyFeatConvention _convention;
  AssumedRate _assumedRate;
  bool _areIdentified = false;
  PersonNames _identities;
  std::optional<std::int64_t> _frame;  // of the row before
  std::int32_t _facesInFrame = 0;      // so far
  bool _warnedOfSeveral = false;
  std::vector<std::string> _warnings;

  LookAhead<Raw> _ahead;
};

}  // namespace KV::recordings
