#pragma once

#include "rosbag2/bagfile.hpp"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KV::recordings
{

class McapBytes;
class McapFields;
class McapInput;
struct McapChunkHead;
struct McapRecord;

/// Consecutive records of a file of MCAP that are read at once: a chunk, or messages outside of chunks.
struct McapPart
{
  enum class Compression : std::uint8_t
  {
    None,
    Lz4,
    Zstd
  };

  std::uint64_t begin = 0;   ///< place of its first byte in the file
  std::uint64_t stored = 0;  ///< [bytes] in the file
  Compression compression = Compression::None;
  std::uint64_t records = 0;     ///< [bytes] of the complete records, unpacked
  std::int64_t firstNumber = 0;  ///< of its first message in the file

  /// The channels of its messages, and for each the earliest of their times.
  std::vector<std::pair<std::uint16_t, std::int64_t>> channels;

  /// Returns the records. The input must outlive them.
  std::unique_ptr<McapBytes> open(const McapInput& input) const;
};

/// One file of a bag, which is a file of MCAP.
///
/// It is read from its beginning to its end when it is opened, and its checksums are compared. The topics of an
/// existing summary are used; its index is not, since it could be wrong. A file that is cut is read up to the cut; a
/// damaged file is refused. Its memory and time are limited, see inputlimits.hpp.
class McapFile : public BagFile
{
public:
  /// Opens the file.
  ///
  /// \param path      in messages
  /// \param unpacked  the contents, if the file is packed
  /// \throws Error if it cannot be read, or is damaged.
  McapFile(const std::string& path, std::unique_ptr<const UnpackedFile> unpacked);

  std::string lack() const override { return _lack; }
  std::unique_ptr<BagMessages> messagesOf(const std::vector<std::int64_t>& topics) override;

  const std::vector<McapPart>& parts() const { return _parts; }

  /// Opens the file again.
  ///
  /// \throws Error if it cannot be opened, or has another size than before.
  std::unique_ptr<McapInput> input() const;

  /// Throws Error about a part.
  [[noreturn]] void fail(std::uint64_t place, const std::string& what) const;

  /// Throws Error: the messages that wait for earlier ones need too much memory.
  [[noreturn]] void failForOrder() const;

  /// Throws Error: the messages of one part need too much memory.
  [[noreturn]] void failForSize(const McapPart& part) const;

private:
  std::string _container() const override;

  void _scan(const McapInput& input);
  bool _scanRecord(const McapInput& input, McapBytes& bytes, const McapRecord& record, bool isCut);
  void _scanSummary(McapBytes& bytes);
  void _scanChunk(const McapInput& input, std::uint64_t begin, const McapChunkHead& head, std::uint64_t stored,
                  bool isCut);
  void _scanRecords(McapBytes& bytes, std::uint64_t size, bool isCut, McapPart& part);
  void _takeUnlessMessage(const McapRecord& record, McapFields& fields);
  void _takeSchema(McapFields& fields);
  void _takeChannel(McapFields& fields);
  void _takeMessage(McapFields& fields);
  void _endPart(McapPart part);
  void _endRun();
  void _checkData(const McapInput& input, std::uint64_t end, std::uint32_t checksum) const;
  void _addUnpacked(std::uint64_t bytes);
  void _noteCut(std::uint64_t place);

  std::uint64_t _size = 0;           // [bytes] of the contents
  std::uint64_t _unpackedBytes = 0;  // of all chunks
  std::uint64_t _mostUnpacked = 0;   // [bytes]
  std::map<std::uint16_t, std::string> _schemas;
  std::vector<McapPart> _parts;
  std::optional<McapPart> _run;                     // of messages outside of chunks, not ended yet
  std::map<std::uint16_t, std::int64_t> _earliest;  // by channel, in the part that is read
  std::int64_t _messages = 0;                       // that were found
  std::set<std::string> _kinds;                     // of parts, in words
  std::string _lack;
};

}  // namespace KV::recordings
