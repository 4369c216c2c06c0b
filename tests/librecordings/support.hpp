#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <boost/chrono/duration.hpp>

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace support
{

constexpr std::int64_t recordingEpoch = 1577836800000000000;  // [ns] 2020-01-01T00:00:00Z

inline std::int64_t nanosecondsOf(ko::SystemClock::time_point time)
{
  return time.time_since_epoch().count();
}

inline ko::SystemClock::time_point timeOf(std::int64_t nanoseconds)
{
  return ko::SystemClock::time_point(boost::chrono::nanoseconds(nanoseconds));
}

/// [s] since the beginning of a recording whose timestamps count from 0.
inline double secondsOf(const KV::recordings::Step& entry)
{
  return static_cast<double>(nanosecondsOf(entry.time) - recordingEpoch) * 1e-9;
}

/// A folder of its own for each test, removed at its end.
class TemporaryFolder
{
public:
  TemporaryFolder()
  {
    std::string pattern = (std::filesystem::temp_directory_path() / "recordings-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
      throw std::runtime_error("no temporary folder");
    _path = pattern;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder()
  {
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
  }

  std::string path() const { return _path.string(); }
  std::string path(const std::string& name) const { return (_path / name).string(); }

  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& text) const
  {
    std::ofstream(_path / name, std::ios::binary) << text;
    return path(name);
  }

  /// Writes a file compressed by gzip and returns its path.
  std::string writeCompressed(const std::string& name, const std::string& text) const
  {
    gzFile file = gzopen(path(name).c_str(), "wb");
    gzwrite(file, text.data(), static_cast<unsigned int>(text.size()));
    gzclose(file);
    return path(name);
  }

private:
  std::filesystem::path _path;
};

/// All entries, warnings and errors of a recording.
struct Contents
{
  std::vector<KV::recordings::Step> entries;
  std::vector<std::string> badLines;  ///< their messages
  std::string fatal;                  ///< the message of the error that ended it, if one did
  std::vector<std::string> warnings;
  std::vector<std::string> description;
  bool isDated = false;
};

/// Reads the recording to its end, skipping bad lines.
inline Contents contentsOf(KV::recordings::Reader& reader)
{
  Contents contents;
  contents.description = reader.describe();
  try
  {
    while (true)
    {
      try
      {
        const auto entry = reader.next();
        if (!entry)
          break;
        contents.entries.push_back(*entry);
      }
      catch (const KV::recordings::BadLine& error)
      {
        contents.badLines.emplace_back(error.what());
      }
    }
  }
  catch (const KV::recordings::Error& error)
  {
    contents.fatal = error.what();
  }
  contents.warnings = reader.takeWarnings();
  contents.isDated = reader.isDated();
  return contents;
}

/// Opens the recording and reads it to its end, skipping bad lines.
inline Contents contentsOf(const std::string& path, const std::string& format = "",
                           const KV::recordings::ReadingOptions& options = {})
{
  try
  {
    return contentsOf(*KV::recordings::openRecording(path, format, options));
  }
  catch (const KV::recordings::Error& error)
  {
    Contents contents;
    contents.fatal = error.what();
    return contents;
  }
}

/// A test that reads files which it writes itself.
class RecordingTest : public ::testing::Test
{
protected:
  Contents read(const std::string& text, const KV::recordings::ReadingOptions& options = {}) const
  {
    return contentsOf(folder.write("recording", text), "", options);
  }

  /// Returns the text of this recording's only error after the name of the file.
  std::string errorOf(const std::string& text, const KV::recordings::ReadingOptions& options = {}) const
  {
    const Contents contents = read(text, options);
    const std::string message = !contents.fatal.empty()     ? contents.fatal
                                : contents.badLines.empty() ? std::string()
                                                            : contents.badLines.front();
    const std::string file = folder.path("recording") + ":";
    return message.compare(0, file.size(), file) == 0 ? message.substr(file.size()) : message;
  }

  TemporaryFolder folder;
};

}  // namespace support
