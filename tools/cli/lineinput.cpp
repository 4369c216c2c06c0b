#include "cli/lineinput.hpp"

#include <array>
#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace KV::tools
{

bool LineInput::readFrom(int fileDescriptor)
{
  std::array<char, 1 << 16> piece;  // NOLINT(cppcoreguidelines-pro-type-member-init): read() fills it
  const ssize_t count = ::read(fileDescriptor, piece.data(), piece.size());
  if (count > 0)
    add({piece.data(), static_cast<std::size_t>(count)});
  else if (count == 0)
    end();
  else if (errno != EINTR && errno != EAGAIN)
    throw std::system_error(errno, std::generic_category(), "the input cannot be read");
  return count != 0;
}

void LineInput::add(std::string_view piece)
{
  _text.erase(0, _begin);
  _searched -= _begin;
  _begin = 0;
  _text += piece;
}

void LineInput::end()
{
  _ended = true;
}

LineInput::Line LineInput::take(std::string_view& line)
{
  std::size_t end = _text.find('\n', _searched);
  const bool lacksLineEnd = end == std::string::npos;
  if (lacksLineEnd)
    end = _text.size();
  const bool tooLong = end - _begin > _longestLine;
  if (lacksLineEnd && !(_ended && (_skipping || end > _begin)))
  {
    // A line that is too long is not kept, so it needs no memory.
    _skipping = _skipping || tooLong;
    _begin = _skipping ? end : _begin;
    _searched = end;
    return Line::NotYetHere;
  }

  line = std::string_view(_text).substr(_begin, end - _begin);
  if (!line.empty() && line.back() == '\r')
    line.remove_suffix(1);
  const bool isGone = _skipping || tooLong;
  _skipping = false;
  _begin = lacksLineEnd ? end : end + 1;
  _searched = _begin;
  return isGone ? Line::TooLong : Line::Complete;
}

}  // namespace KV::tools
