#include "terminal/columnfamilies.hpp"

#include <boost/optional/optional.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t leastMembers = 3;
const char* const digits = "0123456789";

/// A name with a number in it.
struct Numbered
{
  std::string before;
  std::string number;
  std::string behind;

  std::uint64_t value() const
  {
    std::uint64_t value = 0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
  }
};

/// Returns the name, divided at its last number; nothing if it has no number, or one that is too long to count.
boost::optional<Numbered> divided(const std::string& name)
{
  constexpr std::size_t mostDigits = 18;
  const std::size_t last = name.find_last_of(digits);
  if (last == std::string::npos)
    return boost::none;
  const std::size_t before = name.find_last_not_of(digits, last);
  const std::size_t first = before == std::string::npos ? 0 : before + 1;
  if (last - first >= mostDigits)
    return boost::none;
  return Numbered{name.substr(0, first), name.substr(first, last - first + 1), name.substr(last + 1)};
}

using Key = std::pair<std::string, std::string>;

Key keyOf(const Numbered& name)
{
  return {name.before, name.behind};
}

std::string familyText(const std::vector<Numbered>& members)
{
  const auto [least, greatest] =
      std::minmax_element(members.begin(), members.end(),
                          [](const Numbered& left, const Numbered& right) { return left.value() < right.value(); });
  const std::string text = least->before + least->number + ".." + greatest->number + least->behind;
  const bool isComplete = greatest->value() - least->value() + 1 == members.size();
  return isComplete ? text : text + " (" + std::to_string(members.size()) + ")";
}

}  // namespace

std::vector<std::string> columnFamilies(const std::vector<std::string>& columns)
{
  std::map<Key, std::vector<Numbered>> families;
  for (const std::string& column : columns)
  {
    if (const auto numbered = divided(column))
      families[keyOf(*numbered)].push_back(*numbered);
  }
  std::vector<std::string> texts;
  std::set<Key> listed;
  for (const std::string& column : columns)
  {
    const auto numbered = divided(column);
    const bool isMember = numbered && families[keyOf(*numbered)].size() >= leastMembers;
    if (!isMember)
      texts.push_back(column);
    else if (listed.insert(keyOf(*numbered)).second)
      texts.push_back(familyText(families[keyOf(*numbered)]));
  }
  return texts;
}

}  // namespace KV::tools
