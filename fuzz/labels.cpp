#include "inputasfile.hpp"
#include "target.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/labelwriter.hpp>
#include <skeigiot/session/labelscopes.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

/// Files of labels, in any of their formats.
namespace fuzz
{

namespace
{

void expectSound(const KV::recordings::LabelSpan& span)
{
  expect(std::isfinite(span.from) && std::isfinite(span.to), "a label has finite times");
  expect(span.from <= span.to, "a label does not end before it starts");
}

void expectSound(const KV::recordings::LabelTrack& track)
{
  using Sample = KV::recordings::LabelTrack::Sample;
  expect(!track.samples.empty(), "a track has values");
  for (const Sample& sample : track.samples)
    expect(std::isfinite(sample.time) && std::isfinite(sample.value), "a value is finite");
  const auto isNotLater = [](const Sample& one, const Sample& next) { return one.time >= next.time; };
  expect(std::adjacent_find(track.samples.begin(), track.samples.end(), isNotLater) == track.samples.end(),
         "values are in the order of their times, each time once");
}

std::size_t countOf(std::string_view text, std::string_view part)
{
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size()))
    ++count;
  return count;
}

/// Returns how many labels a file of this format keeps of these: an annotation of ELAN without text is no label, but
/// Audacity has the name of its tier then.
std::ptrdiff_t countOfKept(const std::vector<KV::recordings::LabelSpan>& spans, const std::string& format)
{
  const auto isKept = [&format](const auto& span) { return format != "elan" || !span.label.empty(); };
  return std::count_if(spans.begin(), spans.end(), isKept);
}

/// Returns whether nothing of a file of labels may change when others are written beside: it has no tier of this
/// program, and no time slot without a time, whose time follows from its neighbours.
bool isFixed(std::string_view input)
{
  return countOf(input, "skeigiot") == 0 && countOf(input, "TIME_SLOT_ID") == countOf(input, "TIME_VALUE");
}

/// Writes the labels of a file beside one of ours, and reads them again.
void expectKept(std::string_view input, const std::string& path, const KV::recordings::Labels& labels,
                const std::string& format)
{
  std::ostringstream written;
  try
  {
    KV::recordings::LabelWriter writer(format);
    writer.keep(path);
    writer.write(written, {{0., 1., "label", "person", "coder", "tier"}});
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a file that cannot be kept is complained of");
    return;
  }
  if (!isFixed(input))
    return;
  const InputAsFile again(written.str());
  const KV::recordings::Labels kept = KV::recordings::readLabels(again.path());
  expect(kept.format == format, "labels are read in the format in which they were written");
  expect(countOfKept(kept.spans, format) == countOfKept(labels.spans, format) + 1, "every label is kept");
}

void expectScopes(const KV::recordings::Labels& labels)
{
  std::vector<std::string> warnings;
  try
  {
    for (const auto& scope : KV::session::scopesOf(labels, {"labels", ""}, -1., warnings))
      expect(scope.to && scope.from <= *scope.to && scope.from.count() >= 0, "a scope lies in the recording");
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "labels that make no scope are complained of");
  }
}

}  // namespace

void fuzzLabels(std::string_view input)
{
  try
  {
    const InputAsFile file(input);
    const KV::recordings::Labels labels = KV::recordings::readLabels(file.path());
    const auto& formats = KV::recordings::labelFormats();
    expect(std::find(formats.begin(), formats.end(), labels.format) != formats.end(), "the format is a known one");
    for (const auto& span : labels.spans)
      expectSound(span);
    for (const auto& track : labels.tracks)
      expectSound(track);
    expectScopes(labels);
    for (const char* format : {"elan", "audacity"})
      expectKept(input, file.path(), labels, format);
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a file that cannot be read is complained of");
  }
}

}  // namespace fuzz
