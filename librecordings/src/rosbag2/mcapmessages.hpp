#pragma once

#include "rosbag2/bagfile.hpp"
#include "rosbag2/mcapfile.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

namespace KV::recordings
{

class McapInput;

/// The messages of some topics of a file of MCAP, in the order of their times.
///
/// The parts of the file are read in the order of their first times. A message is returned once all parts are read that
/// may hold an earlier one: so all messages of parts whose times overlap are kept in memory.
class McapMessages : public BagMessages
{
public:
  /// The file must outlive it.
  McapMessages(const McapFile& file, const std::vector<std::int64_t>& topics);
  ~McapMessages() override;

  bool next(BagMessage& message) override;

private:
  /// A message that waits for earlier ones.
  struct Waiting
  {
    std::int64_t time;
    std::int64_t number;
    std::uint64_t length;  // [bytes] of its data
    std::uint16_t channel;
    std::vector<char> data;  // empty if there are too many

    std::size_t bytes() const { return sizeof(Waiting) + data.size(); }
  };

  static bool _isLater(const Waiting& left, const Waiting& right);
  void _readParts();
  void _read(const McapPart& part);
  std::size_t _take(McapFields& fields, std::int64_t number);

  const McapFile& _file;
  std::unique_ptr<const McapInput> _input;
  std::unordered_set<std::uint16_t> _channels;
  std::vector<std::pair<std::int64_t, std::size_t>> _parts;  // first time and number of each, in order
  std::size_t _nextPart = 0;
  std::vector<Waiting> _waiting;  // a heap, the earliest on top
  std::size_t _bytes = 0;         // of those that wait
};

}  // namespace KV::recordings
