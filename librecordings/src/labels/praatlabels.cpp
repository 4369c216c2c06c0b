#include "labels/praatlabels.hpp"

#include "labels/labeltext.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace KV::recordings
{
namespace
{
constexpr double mostElements = 1e9;
constexpr std::size_t headLength = 256;

/// The texts, numbers and flags of a Praat text file, one after the other. All other words are comments, so the long
/// and the short form have one grammar.
class PraatTokens
{
public:
  PraatTokens(const std::string& path, std::string_view text) : _path(path), _text(text) {}

  /// Returns the next text between quotes; a number before it is an error.
  std::string text(const std::string& field)
  {
    const std::string_view token = _next(field);
    if (token.front() != '"')
      throw Error(place(field), "expected a text in quotes, found " + quote(token));
    std::string value;
    for (std::size_t i = 1; i + 1 < token.size(); ++i)
    {
      value += token[i];
      if (token[i] == '"')
        ++i;  // the second of a doubled quote
    }
    return std::string(trimmedLabel(value));
  }

  double number(const std::string& field)
  {
    const std::string_view token = _next(field);
    if (token.front() == '"' || token.front() == '<')
      throw Error(place(field), "expected a number, found " + quote(token));
    return labelTime(token, place(field));
  }

  std::size_t count(const std::string& field)
  {
    const double value = number(field);
    if (!(value >= 0. && value <= mostElements) || value != std::floor(value))
      throw Error(place(field), "expected how many there are");
    return static_cast<std::size_t>(value);
  }

  std::string_view flag(const std::string& field)
  {
    const std::string_view token = _next(field);
    if (token.front() != '<')
      throw Error(place(field), "expected <exists>, found " + quote(token));
    return token;
  }

  Error::Place place(const std::string& field) const { return {_path, _line, field}; }

private:
  std::string_view _next(const std::string& field)
  {
    while (true)
    {
      _skipBlanks();
      if (_at == _text.size())
        throw Error(place(field), "expected more: the file ends too early");
      const char first = _text[_at];
      if (first == '"')
        return _quoted(field);
      if (first == '!')
      {
        _at = std::min(_text.find('\n', _at), _text.size());
        continue;
      }
      const std::size_t end = std::min(_text.find_first_of(" \t\r\n", _at), _text.size());
      const std::string_view word = _text.substr(_at, end - _at);
      _at = end;
      if (first == '<' || _isNumber(word))
        return word;
    }
  }

  std::string_view _quoted(const std::string& field)
  {
    const std::size_t begin = _at;
    const Error::Place begun = place(field);
    do
    {
      const std::size_t end = _text.find('"', _at + 1);
      if (end == std::string_view::npos)
        throw Error(begun, "a quote is not closed");
      for (; _at <= end; ++_at)
        _line += _text[_at] == '\n' ? 1 : 0;
    } while (_at < _text.size() && _text[_at] == '"');
    return _text.substr(begin, _at - begin);
  }

  void _skipBlanks()
  {
    for (; _at < _text.size() && std::string_view(" \t\r\n").find(_text[_at]) != std::string_view::npos; ++_at)
      _line += _text[_at] == '\n' ? 1 : 0;
  }

  static bool _isNumber(std::string_view word) { return labelNumber(word).has_value(); }

  const std::string& _path;
  std::string_view _text;
  std::size_t _at = 0;
  std::size_t _line = 1;
};

void readIntervals(PraatTokens& tokens, const std::string& tier, Labels& labels)
{
  const std::size_t count = tokens.count("intervals of " + quote(tier));
  for (std::size_t i = 0; i < count; ++i)
  {
    LabelSpan span;
    span.from = tokens.number("xmin");
    span.to = tokens.number("xmax");
    if (span.to < span.from)
      throw Error(tokens.place("xmax"), "the interval ends before it begins");
    span.label = tokens.text("text");
    span.tier = tier;
    if (!span.label.empty())
      labels.spans.push_back(std::move(span));
  }
}

void readPoints(PraatTokens& tokens, const std::string& tier, Labels& labels)
{
  const std::size_t count = tokens.count("points of " + quote(tier));
  for (std::size_t i = 0; i < count; ++i)
  {
    LabelSpan span;
    span.from = span.to = tokens.number("number");
    span.label = tokens.text("mark");
    span.tier = tier;
    labels.spans.push_back(std::move(span));
  }
}

void readTier(PraatTokens& tokens, Labels& labels)
{
  const std::string kind = tokens.text("class");
  if (kind != "IntervalTier" && kind != "TextTier")
    throw Error(tokens.place("class"), "expected IntervalTier or TextTier, found " + quote(kind));
  const std::string name = tokens.text("name");
  tokens.number("xmin");
  tokens.number("xmax");
  if (kind == "IntervalTier")
    readIntervals(tokens, name, labels);
  else
    readPoints(tokens, name, labels);
}

}  // namespace

bool isPraatLabels(std::string_view text)
{
  const std::string_view head = text.substr(0, headLength);
  const bool isPraat = head.find("ooTextFile") != std::string_view::npos || head.substr(0, 12) == "ooBinaryFile";
  return isPraat && head.find("TextGrid") != std::string_view::npos;
}

Labels readPraatLabels(const std::string& path, const std::string& text)
{
  if (text.compare(0, 12, "ooBinaryFile") == 0)
    throw Error({path, 0, {}}, "is a binary TextGrid: save it in Praat as a text file");
  Labels labels;
  PraatTokens tokens(path, text);
  tokens.text("File type");
  tokens.text("Object class");
  tokens.number("xmin");
  tokens.number("xmax");
  if (tokens.flag("tiers?") != "<exists>")
    return labels;
  const std::size_t tiers = tokens.count("size");
  for (std::size_t i = 0; i < tiers; ++i)
    readTier(tokens, labels);
  return labels;
}

}  // namespace KV::recordings
