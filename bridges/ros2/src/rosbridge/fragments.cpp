#include "rosbridge/fragments.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace KV::ros2
{

boost::optional<std::string> Fragments::take(RosbridgeFragment fragment)
{
  if (fragment.total > mostFragments)
    throw std::invalid_argument("it has more than " + std::to_string(mostFragments) + " fragments");
  if (fragment.number >= fragment.total)
    throw std::invalid_argument("the 'num' of a fragment is not below its 'total'");
  if (fragment.id.size() > longestId)
    throw std::invalid_argument("the 'id' of a fragment has more than " + std::to_string(longestId) + " bytes");
  const auto text = _textOf(fragment);
  try
  {
    _addTo(*text, std::move(fragment));
  }
  catch (const std::invalid_argument&)
  {
    if (!text->isTooLong || text->taken >= text->total)
      _texts.erase(text);
    throw;
  }
  if (text->taken >= text->total)
  {
    const boost::optional<std::string> whole = _wholeOf(*text);
    _texts.erase(text);
    return whole;
  }
  if (_texts.size() > mostTexts)
  {
    _texts.pop_front();
    throw std::invalid_argument("more than " + std::to_string(mostTexts) + " texts came in fragments at the same time");
  }
  return boost::none;
}

Fragments::Texts::iterator Fragments::_textOf(const RosbridgeFragment& fragment)
{
  const auto isThis = [&fragment](const Text& text) { return text.id == fragment.id; };
  const auto known = std::find_if(_texts.begin(), _texts.end(), isThis);
  if (known != _texts.end())
    return known;
  Text text;
  text.id = fragment.id;
  text.total = fragment.total;
  return _texts.insert(_texts.end(), std::move(text));
}

// The fragments of a text that is too long are counted, so that the text ends with the last one.
void Fragments::_addTo(Text& text, RosbridgeFragment fragment) const
{
  ++text.taken;
  if (text.isTooLong)
    return;
  if (fragment.total != text.total)
    throw std::invalid_argument("its fragments differ in their 'total'");
  text.bytes += fragment.data.size();
  if (text.bytes > _longestText)
  {
    text.isTooLong = true;
    text.parts.clear();
    throw std::invalid_argument("its fragments have more than " + std::to_string(_longestText) + " bytes");
  }
  if (!text.parts.emplace(fragment.number, std::move(fragment.data)).second)
    throw std::invalid_argument("it has two fragments with the same 'num'");
}

boost::optional<std::string> Fragments::_wholeOf(const Text& text)
{
  if (text.isTooLong)
    return boost::none;
  std::string whole;
  whole.reserve(text.bytes);
  for (const auto& part : text.parts)
    whole += part.second;
  return whole;
}

}  // namespace KV::ros2
