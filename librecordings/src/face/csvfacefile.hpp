#pragma once

#include "csv/csvheader.hpp"
#include "csv/csvnumbers.hpp"
#include "csv/csvrows.hpp"
#include "face/frametimes.hpp"

#include <cstddef>
#include <string>

namespace KV::recordings
{

/// A file of comma-separated values with a header; each row below it is about a face.
class CsvFaceFile
{
public:
  /// Takes an opened file and reads its header; `isRead` is true for the names of columns that matter.
  ///
  /// \throws Error if it cannot be read, is empty, or its columns cannot be separated.
  CsvFaceFile(InputFile input, bool (*isRead)(const std::string& name));

  const CsvHeader& header() const { return _header; }
  const std::string& path() const { return _rows.file().path(); }
  std::size_t lineNumber() const { return _rows.file().lineNumber(); }
  double progress() const { return _rows.file().progress(); }

  /// Returns the place of the row.
  Error::Place place() const { return {path(), lineNumber(), {}}; }

  /// Reads the next row; returns false at the end.
  ///
  /// \throws as CsvRows::next().
  bool next() { return _rows.next(); }

  std::size_t fieldCount() const { return _rows.fields().size(); }

  /// Returns the fields of the row, valid until the next call of next().
  CsvNumbers numbers() const { return {_rows, _header.names()}; }

private:
  CsvHeader _readHeader(bool (*isRead)(const std::string& name));

  CsvRows _rows;
  CsvHeader _header;
};

/// Adds frame numbers where the file has none.
class FrameCounter
{
public:
  /// Sets the number of the frame of the next row: rows of several faces with one timestamp are one frame; without
  /// `facesAreIdentified` every row is a frame.
  void count(Frame& frame, bool facesAreIdentified);

private:
  std::optional<Frame> _last;
};

}  // namespace KV::recordings
