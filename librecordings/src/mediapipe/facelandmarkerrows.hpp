#pragma once

#include "face/facerows.hpp"
#include "input/jsonpieces.hpp"
#include "mediapipe/facelandmarkerresult.hpp"

#include <skeigiot/recordings/faceadapter.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Returns whether a file with these first bytes holds results of the MediaPipe FaceLandmarker as JSON.
bool looksLikeFaceLandmarker(const std::string& head);

/// Results of the MediaPipe FaceLandmarker, dumped as JSON objects: a row for each face, or one without a face.
class FaceLandmarkerRows : public FaceRows
{
public:
  /// Takes an opened file.
  ///
  /// \throws Error if it cannot be read.
  FaceLandmarkerRows(InputFile input, const ReadingOptions& options);

  std::optional<FaceRow> next() override;
  const std::string& path() const override { return _pieces.file().path(); }
  std::size_t lineNumber() const override { return _pieces.lineNumber(); }
  double progress() const override { return _pieces.file().progress(); }
  const FaceAdapter& adapter() const override { return _adapter; }
  Fields fields() const override;
  std::string nothingToRead() const override { return "there is no result"; }
  std::string describeReadings() const override;
  std::string describePersons() const override;
  std::vector<std::string> takeWarnings() override;

private:
  bool _readResult();

  ReadingOptions _options;
  FaceAdapter _adapter;
  JsonPieces _pieces;
  std::string _piece;
  std::int64_t _results = 0;  // so far, usable or not
  std::deque<FaceRow> _rows;  // of the last result
  bool _haveFrames = false;
  bool _haveTimes = false;
  bool _haveScores = false;
  bool _haveMatrices = false;
  bool _warnedOfSeveral = false;
  std::vector<std::string> _warnings;
};

}  // namespace KV::recordings
