#include "export/spillfile.hpp"

#include <utility>

namespace KV::session
{

SpillFile::SpillFile(std::shared_ptr<SpillStore> store) : _buffer(std::move(store)), _stream(&_buffer)
{
  _stream.exceptions(std::ios::badbit);  // so that an exception of the buffer passes through the stream unchanged
}

SpillFile::Buffer::Buffer(std::shared_ptr<SpillStore> store) : _store(std::move(store))
{
  setp(_bytes.begin(), _bytes.end());
}

SpillFile::Buffer::~Buffer()
{
  for (const SpillStore::Block block : _blocks)
    _store->release(block);
}

void SpillFile::Buffer::copyTo(std::ostream& target)
{
  std::vector<char> bytes(_blocks.empty() ? 0 : SpillStore::blockSize);
  for (const SpillStore::Block block : _blocks)
  {
    _store->read(block, bytes.data());
    target.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  target.write(pbase(), pptr() - pbase());
}

// Called when the memory holds a whole block.
SpillFile::Buffer::int_type SpillFile::Buffer::overflow(int_type character)
{
  _blocks.push_back(_store->keep(_bytes.data()));
  setp(_bytes.begin(), _bytes.end());
  if (!traits_type::eq_int_type(character, traits_type::eof()))
    sputc(traits_type::to_char_type(character));
  return traits_type::not_eof(character);
}

}  // namespace KV::session
