#include "study/namepattern.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace KV::session
{

namespace
{

constexpr std::size_t longestPath = 4096;
constexpr int mostAttempts = 1000;  // for values of placeholders that are used twice

}  // namespace

/// Whether a path matches a pattern, some of whose placeholders have a value already.
class NamePattern::Matching
{
public:
  Matching(const std::vector<Part>& parts, std::string_view path, const Values& values)
    : _parts(parts), _path(path), _values(values), _fits(parts.size() + 1, std::vector<bool>(path.size() + 1, false))
  {
    _fits[parts.size()][path.size()] = true;
    for (std::size_t part = parts.size(); part > 0; --part)
      for (std::size_t at = path.size() + 1; at > 0; --at)
        _fits[part - 1][at - 1] = _fitsAt(part - 1, at - 1);
  }

  bool succeeds() const { return _fits[0][0]; }

  /// Returns the values of all placeholders.
  Values values() const
  {
    Values values = _values;
    std::size_t at = 0;
    for (std::size_t part = 0; part < _parts.size(); ++part)
    {
      const std::size_t end = _ends(part, at).front();
      if (_parts[part].kind == Part::Kind::Placeholder)
        values[_parts[part].placeholder] = std::string(_path.substr(at, end - at));
      at = end;
    }
    return values;
  }

  /// Returns the values that a placeholder may have where it is used first.
  std::vector<std::string> candidates(std::size_t placeholder) const
  {
    std::vector<std::size_t> starts{0};
    for (std::size_t part = 0; part < _parts.size(); ++part)
    {
      std::vector<std::size_t> ends;
      std::vector<std::string> found;
      std::vector<char> known(_path.size() + 1, 0);
      const bool isWanted = _parts[part].kind == Part::Kind::Placeholder && _parts[part].placeholder == placeholder;
      for (const std::size_t start : starts)
        for (const std::size_t end : _ends(part, start))
        {
          if (isWanted && found.size() <= mostAttempts)
            found.emplace_back(_path.substr(start, end - start));
          if (std::exchange(known[end], 1) == 0)
            ends.push_back(end);
        }
      if (isWanted)
        return found;
      starts = std::move(ends);
    }
    return {};
  }

private:
  /// Returns the text that the part must be, if there is only one.
  boost::optional<std::string_view> _textOf(const Part& part) const
  {
    if (part.kind == Part::Kind::Text)
      return std::string_view(part.text);
    if (part.kind == Part::Kind::Placeholder && _values[part.placeholder])
      return std::string_view(*_values[part.placeholder]);
    return {};
  }

  bool _isInName(std::size_t at) const { return at < _path.size() && _path[at] != '/'; }

  bool _fitsAt(std::size_t part, std::size_t at) const
  {
    if (const auto text = _textOf(_parts[part]))
      return _path.substr(at, text->size()) == *text && _fits[part + 1][at + text->size()];
    if (_parts[part].kind == Part::Kind::Star && _fits[part + 1][at])
      return true;
    return _isInName(at) && (_fits[part + 1][at + 1] || _fits[part][at + 1]);
  }

  /// Returns where the part may end if it begins there, the longest first.
  std::vector<std::size_t> _ends(std::size_t part, std::size_t at) const
  {
    if (const auto text = _textOf(_parts[part]))
      return _fits[part][at] ? std::vector<std::size_t>{at + text->size()} : std::vector<std::size_t>();
    std::vector<std::size_t> ends;
    if (_parts[part].kind == Part::Kind::Star && _fits[part + 1][at])
      ends.push_back(at);
    for (; _isInName(at); ++at)
      if (_fits[part + 1][at + 1])
        ends.push_back(at + 1);
    std::reverse(ends.begin(), ends.end());
    return ends;
  }

  const std::vector<Part>& _parts;
  std::string_view _path;
  const Values& _values;
  std::vector<std::vector<bool>> _fits;  // whether the parts from one on match the path from a place on
};

NamePattern::NamePattern(const std::string& pattern)
{
  for (std::size_t i = 0; i < pattern.size(); ++i)
  {
    const bool followsStar = !_parts.empty() && _parts.back().kind == Part::Kind::Star;
    if (pattern[i] == '*' && followsStar)
      continue;
    if (pattern[i] == '*')
      _parts.push_back({Part::Kind::Star, {}, 0});
    else if (pattern[i] == '{')
    {
      const std::size_t end = pattern.find('}', i);
      _parts.push_back(_placeholder(pattern.substr(i + 1, end - i - 1)));
      i = end;
    }
    else
    {
      if (_parts.empty() || _parts.back().kind != Part::Kind::Text)
        _parts.emplace_back();
      _parts.back().text += pattern[i];
    }
  }
}

NamePattern::Part NamePattern::_placeholder(const std::string& name)
{
  const auto known = std::find(_placeholders.begin(), _placeholders.end(), name);
  const auto number = static_cast<std::size_t>(std::distance(_placeholders.begin(), known));
  if (known == _placeholders.end())
    _placeholders.push_back(name);
  else if (std::find(_repeated.begin(), _repeated.end(), number) == _repeated.end())
    _repeated.push_back(number);
  return {Part::Kind::Placeholder, {}, number};
}

boost::optional<std::map<std::string, std::string>> NamePattern::match(const std::string& path) const
{
  if (path.size() > longestPath)
    return {};
  // Each entry has values for some more of the repeated placeholders; the last is tried next.
  std::vector<std::pair<Values, std::size_t>> untried{{Values(_placeholders.size()), 0}};
  for (int attempts = 0; attempts < mostAttempts && !untried.empty(); ++attempts)
  {
    const auto [values, known] = std::move(untried.back());
    untried.pop_back();
    const Matching matching(_parts, path, values);
    if (!matching.succeeds())
      continue;
    if (known == _repeated.size())
    {
      const Values all = matching.values();
      std::map<std::string, std::string> named;
      for (std::size_t i = 0; i < _placeholders.size(); ++i)
        named[_placeholders[i]] = *all[i];
      return named;
    }
    std::vector<std::string> candidates = matching.candidates(_repeated[known]);
    for (auto candidate = candidates.rbegin(); candidate != candidates.rend(); ++candidate)
    {
      untried.emplace_back(values, known + 1);
      untried.back().first[_repeated[known]] = std::move(*candidate);
    }
  }
  return {};
}

}  // namespace KV::session
