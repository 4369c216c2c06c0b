#pragma once

#include "face/csvfacefile.hpp"
#include "face/facerows.hpp"

#include <cstddef>
#include <string>
#include <utility>

namespace KV::recordings
{

/// The rows of a CSV file of a face analyser: the part that all formats share.
class CsvFaceRows : public FaceRows
{
public:
  const std::string& path() const override { return _file.path(); }
  std::size_t lineNumber() const override { return _file.lineNumber(); }
  double progress() const override { return _file.progress(); }
  Columns columns() const override { return _file.header().columns(); }

protected:
  /// Takes an opened file and reads its header; `isRead` is true for the names of columns that matter.
  ///
  /// \throws Error if it cannot be read.
  CsvFaceRows(InputFile input, bool (*isRead)(const std::string& name)) : _file(std::move(input), isRead) {}

  CsvFaceFile& file() { return _file; }
  const CsvFaceFile& file() const { return _file; }

private:
  CsvFaceFile _file;
};

}  // namespace KV::recordings
