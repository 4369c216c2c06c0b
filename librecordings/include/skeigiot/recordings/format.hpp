#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/reader.hpp>
#include <skeigiot/recordings/readingoptions.hpp>

#include <memory>
#include <string>

namespace KV::recordings
{

class InputFile;

/// One format of recordings.
struct SKEIGIOT_API Format
{
  std::string name;         ///< as --format takes it
  std::string description;  ///< one line for the help
  std::string missing;      ///< what a file lacks that is not of it, such as "there are no columns time and reading"

  /// Returns whether the file is of this format, from its first bytes (decompressed).
  bool (*detect)(const std::string& head);

  /// Opens the file.
  ///
  /// \throws Error if it cannot be read.
  std::unique_ptr<Reader> (*open)(const std::string& path, const ReadingOptions& options);

  /// Reads a file or stream that was opened before; null where the format cannot be read forward, as a bag cannot.
  ///
  /// \throws Error if it cannot be read.
  std::unique_ptr<Reader> (*read)(InputFile file, const ReadingOptions& options);

  bool isTable = false;  ///< its files are tables, so that a Table may be of this format
};

}  // namespace KV::recordings
