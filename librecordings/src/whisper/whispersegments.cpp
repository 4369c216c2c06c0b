#include "whisper/whispersegments.hpp"

#include "input/jsondocument.hpp"
#include "input/utf8text.hpp"

#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace KV::recordings
{
namespace
{
using Json = nlohmann::json;
using Document = JsonDocument<Json>;
using Value = JsonValue<Json>;

constexpr double latest = 1e5;         // [s] that a transcript may reach
constexpr double longest = 120.;       // [s] of a segment: Whisper listens to 30 s at a time
constexpr double noSpeechAbove = 0.6;  // Whisper's own threshold of no_speech_prob
constexpr const char* timeWanted = "seconds from 0 to 100000";

std::optional<Value> memberOf(const Value& object, const char* name)
{
  const auto found = object->find(name);
  if (found == object->end() || found->is_null())
    return {};
  return Value(object, name, *found);
}

std::optional<double> timeOf(const Value& object, const char* name)
{
  const std::optional<Value> time = memberOf(object, name);
  if (!time)
    return {};
  const double seconds = (*time)->is_number() ? (*time)->get<double>() : -1.;
  if (!(seconds >= 0. && seconds <= latest))
    time->refuse(timeWanted);
  return seconds;
}

std::optional<std::string> speakerOf(const Value& object)
{
  const std::optional<Value> speaker = memberOf(object, "speaker");
  if (!speaker)
    return {};
  if (!(*speaker)->is_string())
    speaker->refuse("the name of a speaker");
  return utf8Of((*speaker)->get_ref<const std::string&>());
}

/// Returns the span of a segment or word; nothing if it has no times, or ends where it begins or before.
std::optional<WhisperSpan> spanOf(const Value& value, const std::string& speaker)
{
  if (!value->is_object())
    value.refuse("an object with start and end");
  const std::optional<double> from = timeOf(value, "start");
  const std::optional<double> to = timeOf(value, "end");
  if (!from || !to || *to <= *from)
    return {};
  if (*to - *from > longest)
    value.refuse("at most 120 s from start to end, in seconds");
  return WhisperSpan{speakerOf(value).value_or(speaker), *from, *to};
}

class PieceReader
{
public:
  WhisperPiece read(const Value& document)
  {
    const std::optional<Value> segments = memberOf(document, "segments");
    if (!segments)
      _readSegment(document);
    else if (!(*segments)->is_array())
      segments->refuse("a list of segments");
    else
      for (std::size_t i = 0; i < (*segments)->size(); ++i)
        _readSegment(segments->element(i));
    return std::move(_piece);
  }

private:
  void _readSegment(const Value& segment)
  {
    ++_piece.segments;
    if (!segment->is_object())
      segment.refuse("a segment, an object with start and end");
    const std::optional<Value> silence = memberOf(segment, "no_speech_prob");
    if (silence && (*silence)->is_number() && (*silence)->get<double>() > noSpeechAbove)
    {
      ++_piece.silent;
      return;
    }
    if (_readWords(segment))
      return;
    if (auto span = spanOf(segment, {}))
      _piece.spans.push_back(std::move(*span));
    else
      ++_piece.untimed;
  }

  /// Returns whether a word has times.
  bool _readWords(const Value& segment)
  {
    const std::optional<Value> words = memberOf(segment, "words");
    if (!words)
      return false;
    if (!(*words)->is_array())
      words->refuse("a list of words");
    const std::string speaker = speakerOf(segment).value_or("");
    bool isAnyTimed = false;
    std::size_t untimed = 0;
    for (std::size_t i = 0; i < (*words)->size(); ++i)
    {
      if (auto span = spanOf(words->element(i), speaker))
      {
        _piece.spans.push_back(std::move(*span));
        isAnyTimed = true;
      }
      else
        ++untimed;
    }
    _piece.hasWords = _piece.hasWords || isAnyTimed;
    _piece.untimed += isAnyTimed ? untimed : 0;
    return isAnyTimed;
  }

  WhisperPiece _piece;
};

Document parsed(std::string_view text)
{
  refuseNul(text);
  try
  {
    return Document(text);
  }
  catch (const Json::exception& error)
  {
    throw JsonError("", "expected a JSON object, but " + withoutErrorCode(error.what()).substr(0, 200));
  }
}

}  // namespace

WhisperPiece readWhisperPiece(std::string_view text)
{
  const Document json = parsed(text);
  return PieceReader().read(Value(json.root()));
}

}  // namespace KV::recordings
