#pragma once

#include "export/spillstore.hpp"

#include <array>
#include <memory>
#include <ostream>
#include <streambuf>
#include <vector>

namespace KV::session
{

/// What is to be written elsewhere later: a block of it in memory, all before in a store.
class SpillFile
{
public:
  explicit SpillFile(std::shared_ptr<SpillStore> store);
  SpillFile(const SpillFile&) = delete;
  SpillFile& operator=(const SpillFile&) = delete;

  /// Returns where to write; throws WriteError where the store cannot keep it.
  std::ostream& stream() { return _stream; }

  /// Writes all that it holds to another stream.
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
