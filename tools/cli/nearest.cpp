#include "cli/nearest.hpp"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace KV::tools
{

namespace
{

std::string lowerCase(std::string text)
{
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

/// The optimal string alignment distance: no part of the text is changed twice.
std::size_t changesBetween(const std::string& left, const std::string& right)
{
  // changes[i][j] turns the first i letters of the one into the first j of the other.
  std::vector<std::vector<std::size_t>> changes(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
  for (std::size_t i = 0; i <= left.size(); ++i)
  {
    for (std::size_t j = 0; j <= right.size(); ++j)
    {
      if (i == 0 || j == 0)
      {
        changes[i][j] = i + j;
        continue;
      }
      const std::size_t replaced = changes[i - 1][j - 1] + (left[i - 1] == right[j - 1] ? 0 : 1);
      changes[i][j] = std::min({changes[i - 1][j] + 1, changes[i][j - 1] + 1, replaced});
      const bool isExchange = i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (isExchange)
        changes[i][j] = std::min(changes[i][j], changes[i - 2][j - 2] + 1);
    }
  }
  return changes[left.size()][right.size()];
}

}  // namespace

boost::optional<std::string> nearest(const std::string& word, const std::vector<std::string>& candidates)
{
  constexpr std::size_t mostChanges = 3;
  std::size_t least = std::min(mostChanges, std::max<std::size_t>(1, word.size() / 3)) + 1;
  boost::optional<std::string> result;
  for (const std::string& candidate : candidates)
  {
    const std::size_t changes = changesBetween(lowerCase(word), lowerCase(candidate));
    if (changes < least)
    {
      least = changes;
      result = candidate;
    }
  }
  return result;
}

}  // namespace KV::tools
