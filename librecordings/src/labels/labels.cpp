#include <skeigiot/recordings/labels.hpp>

#include "labels/audacitylabels.hpp"
#include "labels/borislabels.hpp"
#include "labels/csvlabels.hpp"
#include "labels/elanlabels.hpp"
#include "labels/labeltext.hpp"
#include "labels/praatlabels.hpp"

#include <skeigiot/recordings/error.hpp>

#include <array>
#include <filesystem>
#include <string_view>

namespace KV::recordings
{
namespace
{

struct LabelFormat
{
  const char* name;
  bool (*detects)(std::string_view text);
  Labels (*read)(const std::string& path, const std::string& text);
};

// In the order of detection: what no other format looks like comes first.
constexpr std::array<LabelFormat, 5> formats = {{{"elan", isElanLabels, readElanLabels},
                                                 {"praat", isPraatLabels, readPraatLabels},
                                                 {"boris", isBorisLabels, readBorisLabels},
                                                 {"csv", isCsvLabels, readCsvLabels},
                                                 {"audacity", isAudacityLabels, readAudacityLabels}}};

/// Returns the name of the file without extensions, of which a packed one has two.
std::string coderOf(const std::string& path)
{
  std::filesystem::path name = std::filesystem::path(path).filename();
  if (name.extension() == ".gz")
    name = name.stem();
  return name.stem().string();
}

}  // namespace

const std::vector<std::string>& labelFormats()
{
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    all.reserve(formats.size());
    for (const LabelFormat& format : formats)
      all.emplace_back(format.name);
    return all;
  }();
  return names;
}

Labels readLabels(const std::string& path)
{
  const std::string text = labelText(path);
  for (const LabelFormat& format : formats)
  {
    if (!format.detects(text))
      continue;
    Labels labels = format.read(path, text);
    labels.format = format.name;
    for (LabelSpan& span : labels.spans)
      span.coder = span.coder.empty() ? coderOf(path) : span.coder;
    for (LabelTrack& track : labels.tracks)
      track.coder = track.coder.empty() ? coderOf(path) : track.coder;
    return labels;
  }
  throw Error(
      {path, 0, {}},
      "no format of labels fits: expected ELAN .eaf, Praat TextGrid, events of BORIS, labels of Audacity, or CSV "
      "with the columns start, end, value or time, value");
}

}  // namespace KV::recordings
