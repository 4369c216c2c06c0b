#include "xdf/xdfbytes.hpp"

#include <algorithm>

namespace KV::recordings
{
namespace
{
const char* const tooShort = "the file ends within a chunk: it may be cut";

}  // namespace

bool XdfBytes::atEnd()
{
  while (_block.empty())
    if (!_file.readBlock(_block))
      return true;
  return false;
}

void XdfBytes::skip(std::uint64_t count)
{
  while (count > 0)
  {
    if (atEnd())
      throw XdfDamage(tooShort);
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, _block.size()));
    _block.remove_prefix(taken);
    _position += taken;
    count -= taken;
  }
}

std::string XdfBytes::text(std::size_t count)
{
  std::string text;
  while (text.size() < count)
  {
    if (atEnd())
      throw XdfDamage(tooShort);
    const std::size_t taken = std::min(count - text.size(), _block.size());
    text += _block.substr(0, taken);
    _block.remove_prefix(taken);
    _position += taken;
  }
  return text;
}

std::uint64_t XdfBytes::length()
{
  const auto size = number<std::uint8_t>();
  switch (size)
  {
    case 1:
      return number<std::uint8_t>();
    case 4:
      return number<std::uint32_t>();
    case 8:
      return number<std::uint64_t>();
    default:
      throw XdfDamage("expected a length of 1, 4 or 8 bytes, found " + std::to_string(size));
  }
}

void XdfBytes::_take(char* target, std::size_t count)
{
  while (count > 0)
  {
    if (atEnd())
      throw XdfDamage(tooShort);
    const std::size_t taken = std::min(count, _block.size());
    std::memcpy(target, _block.data(), taken);
    target += taken;
    _block.remove_prefix(taken);
    _position += taken;
    count -= taken;
  }
}

}  // namespace KV::recordings
