#pragma once

/// \file
/// Opens recordings, whatever their format, to read them step by step. The one header to include.

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/badline.hpp>
#include <skeigiot/recordings/columns.hpp>
#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/format.hpp>
#include <skeigiot/recordings/reader.hpp>
#include <skeigiot/recordings/readingoptions.hpp>
#include <skeigiot/recordings/step.hpp>

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// Recordings and outputs of front ends, as steps and observations of the library.
namespace KV::recordings
{

/// Returns all formats; detection asks them in this order.
SKEIGIOT_API const std::vector<Format>& recordingFormats();

/// Returns whether a file is of one of the formats; one that cannot be read counts as one, so that it is not lost.
SKEIGIOT_API bool isRecording(const std::string& path);

/// Returns the name of the format of a file.
///
/// \throws Error if the file cannot be read or no format fits.
SKEIGIOT_API std::string formatNameOf(const std::string& path);

/// Opens a recording of the format with this name, or, if the name is empty, of the first format that detects it.
///
/// \throws Error if the file cannot be read or no format fits.
SKEIGIOT_API std::unique_ptr<Reader> openRecording(const std::string& path, const std::string& format,
                                                   const ReadingOptions& options);

/// Reads a recording from where the stream stands, plain or compressed by gzip or zstd, in the same way as one with a
/// path.
///
/// The stream must outlive the reader, and nobody else may read from it. It may be at any place and need not be able
/// to go back. Bags of ROS 2 cannot be read from a stream.
///
/// \param name    used in messages in place of the path of a file.
/// \param format  name of the format; empty to detect it by the first 64 KiB.
/// \throws Error if the stream cannot be read, no format fits, or the format needs a path.
SKEIGIOT_API std::unique_ptr<Reader> openRecording(std::istream& stream, const std::string& name,
                                                   const std::string& format, const ReadingOptions& options);

}  // namespace KV::recordings
