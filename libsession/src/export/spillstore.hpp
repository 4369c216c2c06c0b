#pragma once

#include <skeigiot/session/outputstream.hpp>

#include <cstddef>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace KV::session
{

/// Keeps blocks of bytes in one file without a name. The system removes it with the object, or when the program ends.
///
/// Several SpillFiles share it, on any threads. So all waiting sessions together need one file descriptor. The file is
/// made for the first block, and a released block is used again.
class SpillStore
{
public:
  static constexpr std::size_t blockSize = std::size_t{16} << 10U;  ///< [bytes]

  /// Number of a block in the file.
  using Block = std::size_t;

  /// Makes an empty store; its file will be on the disk of that folder.
  explicit SpillStore(std::string folder) : _folder(std::move(folder)) {}
  ~SpillStore();
  SpillStore(const SpillStore&) = delete;
  SpillStore& operator=(const SpillStore&) = delete;

  /// Keeps the bytes, `blockSize` of them.
  ///
  /// \throws WriteError if the file cannot be made or written.
  Block keep(const char* bytes);

  /// Reads the bytes of a block.
  ///
  /// \throws WriteError if the file cannot be read.
  void read(Block block, char* bytes) const;

  /// Releases the block, to be used again.
  void release(Block block);

private:
  Block _takeFree();

  std::string _folder;
  std::mutex _mutex;

  // Guarded by _mutex; the descriptor stays the same once there is a block
  int _fileDescriptor = -1;
  std::size_t _count = 0;
  std::vector<Block> _free;
};

}  // namespace KV::session
