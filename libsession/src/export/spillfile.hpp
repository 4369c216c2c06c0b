#pragma once

#include "export/spillstore.hpp"

#include <array>
#include <memory>
#include <ostream>
#include <streambuf>
#include <vector>

namespace KV::session
{

/// Output that is written to its target later: the last block is in memory, earlier ones are in a store.
class SpillFile
{
public:
  explicit SpillFile(std::shared_ptr<SpillStore> store);
  SpillFile(const SpillFile&) = delete;
  SpillFile& operator=(const SpillFile&) = delete;

  /// Returns the stream to write to; it throws WriteError if the store cannot keep a block.
  std::ostream& stream() { return _stream; }

  /// Writes all its content to another stream.
  ///
  /// \throws WriteError if the store cannot be read.
  void copyTo(std::ostream& target) { _buffer.copyTo(target); }

private:
  class Buffer : public std::streambuf
  {
  public:
    explicit Buffer(std::shared_ptr<SpillStore> store);
    ~Buffer() override;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;

    void copyTo(std::ostream& target);

  protected:
    int_type overflow(int_type character) override;

  private:
    std::shared_ptr<SpillStore> _store;
    std::vector<SpillStore::Block> _blocks;  // in their order
    std::array<char, SpillStore::blockSize> _bytes{};
  };

  Buffer _buffer;
  std::ostream _stream;
};

}  // namespace KV::session
