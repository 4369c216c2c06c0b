#include "xdf/xdfreader.hpp"

#include "face/mapping.hpp"
#include "recording/countedtext.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/quote.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace KV::recordings
{
namespace
{
constexpr std::size_t mostDescribed = 50;  // streams

std::string useOf(const XdfStream& stream)
{
  if (!stream.isKept())
    return "not read";
  std::string scopes = stream.areScopes ? "its markers are scopes" : "";
  const std::size_t channels = stream.areScopes ? stream.kept.size() - 1 : stream.kept.size();
  if (channels == 0)
    return scopes;
  const std::string person = stream.mapping->person.empty() ? "person 0" : quote(stream.mapping->person);
  return countedText(channels, "channel", "channels") + " read, of " + person + (scopes.empty() ? "" : "; " + scopes);
}

std::string describeStream(const XdfStream& stream)
{
  std::vector<std::string> parts;
  if (!stream.type.empty())
    parts.push_back(stream.type);
  parts.push_back(countedText(stream.channels, "channel", "channels") + " of " + stream.valuesName);
  parts.push_back(stream.rate > 0. ? shortNumber(static_cast<float>(stream.rate)) + " Hz" : "irregular");
  std::string text =
      "stream " + quote(stream.name) + " (" + listed(parts) + "): " + countedText(stream.samples, "sample", "samples");
  if (stream.segments > 1)
    text +=
        ", clock set " + (stream.segments == 2 ? std::string("once") : std::to_string(stream.segments - 1) + " times");
  return text + "; " + useOf(stream);
}

}  // namespace

bool looksLikeXdf(const std::string& head)
{
  return head.compare(0, 4, "XDF:") == 0;
}

XdfReader::XdfReader(InputFile file, const ReadingOptions& options)
  : _mapping(readMapping(options.mapping).streams), _file(std::move(file), _mapping)
{
  auto table = std::make_unique<XdfTable>(_file);
  if (table->repeated() > 0)
    _warnings.push_back(countedText(table->repeated(), "sample", "samples") +
                        " left out, since the one before in the stream is not earlier");
  if (!table->isEmpty())
    _rows = std::make_unique<TidyReader>(std::move(table));
  else
    _warnings.emplace_back("no channel is read: name channels in a mapping, in its member streams");
}

boost::optional<Step> XdfReader::next()
{
  if (_rows)
  {
    boost::optional<Step> step = _rows->next();
    if (step)
      step->isDated = false;
    return step;
  }
  if (!_file.damage().empty() && !std::exchange(_saidDamage, true))
    throw BadLine({_file.path(), 0, {}}, _file.damage());
  return {};
}

std::vector<std::string> XdfReader::describe() const
{
  std::vector<std::string> lines = {
      "XDF: channels as the mapping says; angles in degrees; head yaw to the own right, gaze yaw to the own left, "
      "pitch up",
      "times in seconds from the first sample that is read, on the clock of the recorder, without jitter; markers last "
      "until the next one"};
  for (const XdfStream& stream : _file.streams())
  {
    if (lines.size() == mostDescribed + 2)
    {
      lines.push_back("and " + countedText(_file.streams().size() - mostDescribed, "stream", "streams") + " more");
      break;
    }
    lines.push_back(describeStream(stream));
  }
  return lines;
}

std::vector<std::string> XdfReader::takeWarnings()
{
  std::vector<std::string> warnings = std::exchange(_warnings, {});
  if (_rows)
  {
    std::vector<std::string> more = _rows->takeWarnings();
    std::move(more.begin(), more.end(), std::back_inserter(warnings));
  }
  return warnings;
}

Columns XdfReader::columns() const
{
  return _rows ? _rows->columns() : Columns();
}

double XdfReader::progress() const
{
  return _rows ? _rows->progress() : 1.;
}

}  // namespace KV::recordings
