#include "inputasfile.hpp"
#include "target.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/labels.hpp>

#include <algorithm>
#include <cmath>

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
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a file that cannot be read is complained of");
  }
}

}  // namespace fuzz
