#pragma once

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace KV::session
{

/// A path with placeholders, see Study.
class NamePattern
{
public:
  /// \pre the pattern was checked: its placeholders are names in braces.
  explicit NamePattern(const std::string& pattern);

  /// Returns the values of the placeholders, if the path matches. A placeholder that is used twice has one value. Where
  /// several values match, a placeholder takes as much of the path as it can, and the first one comes first.
  ///
  /// \par Complexity
  ///   The length of the pattern times that of the path; up to 1000 times as long if a placeholder is used twice. A
  ///   path for which that is not enough, or with more than 4096 bytes, does not match.
  boost::optional<std::map<std::string, std::string>> match(const std::string& path) const;

  /// Returns the names of the placeholders in the order in which they are first used.
  const std::vector<std::string>& placeholders() const { return _placeholders; }

private:
  struct Part
  {
    enum class Kind
    {
      Text,
      Star,
      Placeholder
    };

    Kind kind = Kind::Text;
    std::string text;             // of Kind::Text
    std::size_t placeholder = 0;  // of Kind::Placeholder: which one
  };

  using Values = std::vector<boost::optional<std::string>>;
  class Matching;

  Part _placeholder(const std::string& name);

  std::vector<Part> _parts;
  std::vector<std::string> _placeholders;
  std::vector<std::size_t> _repeated;  // placeholders that are used more than once
};

}  // namespace KV::session
