#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/inputlimits.hpp>

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

class ByteSource;

/// A text file or stream, plain or compressed by gzip or zstd, read line by line in bounded memory. Not synchronised.
class SKEIGIOT_API InputFile
{
public:
  static constexpr std::size_t longestLine = limits::longestLine;  ///< [bytes]

  /// Opens the file; a byte order mark of UTF-8 at its beginning is skipped.
  ///
  /// \throws Error if it cannot be opened.
  explicit InputFile(const std::string& path);

  /// Reads from where the stream stands; a byte order mark of UTF-8 there is skipped. The stream must outlive the file.
  ///
  /// Waits until the stream has filled a buffer or ended: this is for recordings, not for what a sensor sends now.
  ///
  /// \param name  used in messages in place of the path of a file.
  /// \throws Error if the stream has failed before.
  InputFile(std::istream& stream, const std::string& name);

  InputFile(InputFile&& other) noexcept;  ///< `other` may only be destroyed afterwards
  InputFile& operator=(InputFile&& other) = delete;
  ~InputFile();

  /// Reads the next line into `line`, without its line end (LF or CR LF); returns false at the end of the file.
  ///
  /// The view is valid until the next call.
  ///
  /// \throws BadLine if the line is longer than `longestLine`; the next call goes on behind it.
  /// \throws Error if the file cannot be read, or its compressed data are damaged or cut.
  bool readLine(std::string_view& line);

  /// Returns the next bytes after those read so far, as many as are there at once; returns false at the end of the
  /// file. Lines are not counted.
  ///
  /// The view is valid until the next call.
  ///
  /// \throws Error if the file cannot be read, or its compressed data are damaged or cut.
  bool readBlock(std::string_view& block);

  /// Returns the number of the line read last, from 1.
  std::size_t lineNumber() const { return _lineNumber; }

  /// Returns whether the line read last had a line end: only the last line of a file may have none.
  bool lineEnded() const { return _lineEnded; }

  /// Returns the path, or the name of the stream.
  const std::string& path() const { return _path; }

  /// Returns which part of the file, compressed as it is, was taken in: in [0, 1]; 0 of a stream up to its end.
  double progress() const;

  /// Returns up to `count` bytes from the beginning of the file, decompressed, without a byte order mark; fewer where
  /// the file is cut or damaged.
  ///
  /// \throws Error if nothing of it can be read.
  static std::string head(const std::string& path, std::size_t count);

  /// Returns up to `count` bytes of what is not read yet, decompressed, and leaves them to be read; fewer at the end,
  /// or where the file is cut or damaged.
  ///
  /// \throws Error if nothing of it can be read.
  std::string peek(std::size_t count);

private:
  InputFile(std::string path, std::unique_ptr<ByteSource> source);

  std::string_view _unread() const { return {_buffer.data() + _begin, _end - _begin}; }
  void _readAtLeast(std::size_t count);
  bool _readMore();
  bool _readOn();
  void _makeRoom();
  void _handOut(std::size_t length, bool ended, std::string_view& line);
  void _skipLine();

  std::string _path;
  std::unique_ptr<ByteSource> _source;
  std::vector<char> _buffer;
  std::size_t _begin = 0;  // of what is not handed out yet
  std::size_t _end = 0;
  bool _atEnd = false;
  std::string _fault;  // of the file, met and not thrown yet
  std::size_t _lineNumber = 0;
  bool _lineEnded = true;
};

}  // namespace KV::recordings
