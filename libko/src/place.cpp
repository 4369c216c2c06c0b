#include "place.hpp"

#include <algorithm>

namespace ko
{

namespace
{

constexpr std::size_t longestName = 64;
constexpr std::size_t mostNames = 32;

}  // namespace

std::string Place::path() const
{
  if (!_outer)
    return {};
  std::string path = _outer->path();
  if (_name.data())
    appendMember(path, _name);
  else
    appendElement(path, _index);
  return path;
}

void appendMember(std::string& path, std::string_view name)
{
  if (!path.empty())
    path += '.';
  path += shortened(name, longestName);
}

void appendElement(std::string& path, std::size_t index)
{
  path += '[' + std::to_string(index) + ']';
}

std::string listed(const std::vector<std::string>& names)
{
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < mostNames; ++i)
    text += (i == 0 ? "" : ", ") + shortened(names[i], longestName);
  return "(" + text + (names.size() > mostNames ? ", ...)" : ")");
}

std::string shortened(std::string_view text, std::size_t length)
{
  std::string kept(text.substr(0, length));
  const auto isControl = [](char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7f;
  };
  std::replace_if(kept.begin(), kept.end(), isControl, '?');
  return text.size() <= length ? kept : kept + "...";
}

}  // namespace ko
