#pragma once

#include "csvrows.hpp"
#include "frametimes.hpp"
#include "openfacecolumns.hpp"
#include "openfacerow.hpp"
#include "recording.hpp"

#include <deque>
#include <exception>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tools
{

/// The rows of an OpenFace file, of which the first can be looked at ahead.
class OpenFaceFile
{
public:
  /// Opens the file, and reads its header and a bounded number of rows.
  ///
  /// \throws RecordingError if it cannot be read, or has no row.
  OpenFaceFile(const std::string& path, const ReadingOptions& options);

  const OpenFaceColumns& columns() const { return _columns; }

  /// Returns the frames of the first rows, one each; at least one.
  const std::vector<Frame>& firstFrames() const { return _firstFrames; }

  /// Returns the next row, or nothing at the end; where the file has no frame numbers, frames are counted from 0.
  ///
  /// \throws BadLine for a row that cannot be used; the next call goes on behind it.
  /// \throws RecordingError where the rest of the file cannot be read.
  std::optional<OpenFaceRow> next();

  const std::string& path() const { return _rows.file().path(); }
  double progress() const { return _rows.file().progress(); }

private:
  OpenFaceColumns _readHeader();
  void _lookAhead();
  std::optional<OpenFaceRow> _read();
  void _countFrame(Frame& frame);

  ReadingOptions _options;
  CsvRows _rows;
  OpenFaceColumns _columns;
  std::optional<Frame> _lastFrame;
  std::deque<std::variant<OpenFaceRow, std::exception_ptr>> _ahead;  // rows, or the errors in their places
  std::vector<Frame> _firstFrames;
  bool _ended = false;
};

}  // namespace tools
