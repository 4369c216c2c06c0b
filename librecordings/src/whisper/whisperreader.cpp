#include "whisper/whisperreader.hpp"

#include "face/mapping.hpp"
#include "input/jsonvalue.hpp"
#include "recording/countedtext.hpp"
#include "recording/recordingclock.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/signallimits.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr double ticksPerSecond = 10.;
constexpr double rounding = 1e-6;        // [ticks] of times such as 1.1 s
constexpr std::size_t mostBad = 100;     // objects of one file
constexpr std::int64_t joinedPause = 3;  // [ticks] a pause in speech, no end of it
constexpr std::int64_t ticksAfter = 10;  // so long a person is said not to speak any more

std::string firstNameIn(const std::string& head, std::size_t object)
{
  const std::size_t begin = head.find_first_not_of(" \t\r\n", object + 1);
  if (begin == std::string::npos || head[begin] != '"')
    return {};
  const std::size_t end = head.find('"', begin + 1);
  return end == std::string::npos ? std::string() : head.substr(begin + 1, end - begin - 1);
}

}  // namespace

bool looksLikeWhisper(const std::string& head)
{
  const std::size_t begin = head.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos || (head[begin] != '{' && head[begin] != '['))
    return false;
  for (const char* name : {"\"no_speech_prob\"", "\"avg_logprob\"", "\"word_segments\""})
    if (head.find(name) != std::string::npos)
      return true;
  constexpr std::array<const char*, 3> firstNames = {"segments", "text", "language"};
  const std::string first = firstNameIn(head, begin);
  return head[begin] == '{' && std::find(firstNames.begin(), firstNames.end(), first) != firstNames.end();
}

WhisperReader::WhisperReader(InputFile file, const ReadingOptions& options)
  : _path(file.path()), _mapping(options.mapping)
{
  const SpeakerTable table = readMapping(options.mapping).speakers;
  _read(std::move(file));
  _assign(table);
  _collectWarnings();
}

void WhisperReader::_read(InputFile file)
{
  JsonPieces pieces(std::move(file));
  while (_readPiece(pieces))
    if (_spans.size() > limits::mostSpansOfSpeech)
      throw Error({_path, pieces.lineNumber(), {}}, "has more than " + std::to_string(limits::mostSpansOfSpeech) +
                                                        " words or segments: this is no transcript of one recording");
  if (_counts.segments == 0 && _bad.empty())
    throw Error({_path, 0, {}}, "has no segments, so nobody speaks");
}

/// Returns whether there was one; next() throws the errors.
bool WhisperReader::_readPiece(JsonPieces& pieces)
{
  try
  {
    std::string text;
    if (!pieces.next(text))
      return false;
    WhisperPiece piece = readWhisperPiece(text);
    _counts.segments += piece.segments;
    _counts.silent += piece.silent;
    _counts.untimed += piece.untimed;
    _hasWords = _hasWords || piece.hasWords;
    std::move(piece.spans.begin(), piece.spans.end(), std::back_inserter(_spans));
  }
  catch (const JsonError& error)
  {
    _bad.emplace_back(Error::Place{_path, pieces.lineNumber(), error.path()}, error.what());
  }
  catch (const BadLine& error)
  {
    _bad.push_back(error);
  }
  if (_bad.size() > mostBad)
    throw Error(_bad.front());  // NOLINT(cppcoreguidelines-slicing): it ends the recording
  return true;
}

/// Takes speech apart by persons, and joins it over pauses.
void WhisperReader::_assign(const SpeakerTable& table)
{
  std::stable_sort(_spans.begin(), _spans.end(),
                   [](const WhisperSpan& one, const WhisperSpan& other) { return one.from < other.from; });
  const bool areNamed =
      std::any_of(_spans.begin(), _spans.end(), [](const WhisperSpan& span) { return !span.speaker.empty(); });
  for (const WhisperSpan& span : _spans)
  {
    if (table.empty() && areNamed && span.speaker.empty())
    {
      ++_counts.unassigned;
      continue;
    }
    if (_isLeftOut(table, span.speaker))
      continue;
    const auto first = static_cast<Tick>(std::floor(span.from * ticksPerSecond + rounding));
    const auto behind = static_cast<Tick>(std::ceil(span.to * ticksPerSecond - rounding));
    const Speech speech{first, std::max(first, behind - 1)};
    std::vector<Speech>& known = _speech[_numberOf(table, span.speaker)];
    if (_speech.size() > limits::mostSpeakers)
      throw Error({_path, 0, "speaker"}, "there are more than " + std::to_string(limits::mostSpeakers) + " speakers");
    if (!known.empty() && speech.first <= known.back().last + joinedPause)
      known.back().last = std::max(known.back().last, speech.last);
    else
      known.push_back(speech);
    _end = std::max(_end, speech.last + ticksAfter);
  }
  _spans = {};
}

/// Notes why.
bool WhisperReader::_isLeftOut(const SpeakerTable& table, const std::string& speaker)
{
  if (table.empty())
    return false;
  const auto found = table.find(speaker);
  if (found == table.end())
    ++_unknownSpeakers[speaker];
  else if (found->second.isNobody())
    _described[speaker] = "nobody";
  return found == table.end() || found->second.isNobody();
}

std::int32_t WhisperReader::_numberOf(const SpeakerTable& table, const std::string& speaker)
{
  const auto found = table.find(speaker);
  if (found != table.end() && found->second.number)
  {
    _described[speaker] = "person " + std::to_string(*found->second.number);
    return *found->second.number;
  }
  if (found == table.end() && speaker.empty())
    return 0;
  const std::string& name = found == table.end() ? speaker : found->second.name;
  const std::int32_t number = _names.numberOf(name, {_path, 0, "speaker"});
  _namesOfPersons[number] = _names.nameOf(number);
  _described[speaker] = _namesOfPersons[number].empty() ? "person " + std::to_string(number) : name;
  return number;
}

void WhisperReader::_collectWarnings()
{
  if (_counts.silent > 0)
    _warnings.push_back(countedText(_counts.silent, "segment", "segments") +
                        " left out as no speech: no_speech_prob is above 0.6");
  if (_counts.untimed > 0)
    _warnings.push_back(countedText(_counts.untimed, "segment or word", "segments or words") +
                        " without times left out, or with an end that is not after the start");
  if (_counts.unassigned > 0)
    _warnings.push_back(countedText(_counts.unassigned, "segment or word", "segments or words") +
                        " without a speaker left out, since others have one");
  for (const auto& [speaker, count] : _unknownSpeakers)
    _warnings.push_back("speaker " + quote(speaker) + " left out: " + _mapping + " does not say which person that is");
  if (_speech.empty())
    _warnings.emplace_back("nobody speaks");
}

boost::optional<Step> WhisperReader::next()
{
  if (!_bad.empty())
  {
    const BadLine bad = _bad.front();
    _bad.pop_front();
    throw BadLine(bad);
  }
  while (_ready.empty() && !_speech.empty() && _tick <= _end)
    _advance();
  if (_ready.empty())
    return {};
  Step step = std::move(_ready.front());
  _ready.pop_front();
  return step;
}

/// Makes the steps of a tick, and goes on to the next that has some.
void WhisperReader::_advance()
{
  Tick nextTick = std::numeric_limits<Tick>::max();
  for (const auto& [person, speech] : _speech)
  {
    std::size_t& at = _at[person];
    while (at + 1 < speech.size() && speech[at + 1].first <= _tick)
      ++at;
    const Speech& present = speech[at];
    const bool speaks = present.first <= _tick && _tick <= present.last;
    const bool spoke = present.last < _tick && _tick <= present.last + ticksAfter;
    if (speaks || spoke || _tick == 0)
    {
      Step step;
      step.time = timeAfter(recordingEpoch, static_cast<double>(_tick) / ticksPerSecond);
      step.isDated = false;
      step.person = person;
      const auto name = _namesOfPersons.find(person);
      step.personName = name == _namesOfPersons.end() ? std::string() : name->second;
      step.observation.speaking.emplace(step.time, speaks);
      _ready.push_back(std::move(step));
    }
    if (_tick < present.first)
      nextTick = std::min(nextTick, present.first);
    else if (_tick < present.last + ticksAfter)
      nextTick = std::min(nextTick, _tick + 1);
    else if (at + 1 < speech.size())
      nextTick = std::min(nextTick, speech[at + 1].first);
  }
  _tick = nextTick;
}

std::vector<std::string> WhisperReader::describe() const
{
  std::vector<std::string> persons;
  for (const auto& [speaker, person] : _described)
    persons.push_back(quote(speaker) + " is " + person);
  return {std::string("Whisper: speaking, 10 times a second, by ") + (_hasWords ? "words" : "segments") +
              "; pauses up to 0.3 s are speech",
          "times in seconds from the start; " +
              (persons.empty() ? std::string("all speech is of person 0, since there are no speakers")
                               : "speakers: " + listed(persons))};
}

std::vector<std::string> WhisperReader::takeWarnings()
{
  return std::exchange(_warnings, {});
}

double WhisperReader::progress() const
{
  return _end > 0 ? std::clamp(static_cast<double>(std::min(_tick, _end)) / static_cast<double>(_end), 0., 1.) : 1.;
}

}  // namespace KV::recordings
