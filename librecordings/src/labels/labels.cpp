#include <skeigiot/recordings/labels.hpp>

#include "labels/audacitylabels.hpp"
#include "labels/bidslabels.hpp"
#include "labels/borislabels.hpp"
#include "labels/csvlabels.hpp"
#include "labels/elanlabels.hpp"
#include "labels/labeltext.hpp"
#include "labels/praatlabels.hpp"

#include <skeigiot/recordings/error.hpp>

#include <array>
#include <cstddef>
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
constexpr std::array<LabelFormat, 6> formats = {{{"elan", isElanLabels, readElanLabels},
                                                 {"praat", isPraatLabels, readPraatLabels},
                                                 {"boris", isBorisLabels, readBorisLabels},
                                                 {"bids", isBidsLabels, readBidsLabels},
                                                 {"csv", isCsvLabels, readCsvLabels},
                                                 {"audacity", isAudacityLabels, readAudacityLabels}}};

/// Returns the name of the file without extensions; a packed file has two.
std::string coderOf(const std::string& path)
{
  std::filesystem::path name = std::filesystem::path(path).filename();
  if (name.extension() == ".gz")
    name = name.stem();
  return name.stem().string();
}

/// Of many warnings, keeps the first ones and the number of the others.
void shorten(std::vector<std::string>& warnings)
{
  if (warnings.size() <= Labels::mostWarnings)
    return;
  const std::size_t more = warnings.size() - Labels::mostWarnings;
  warnings.resize(Labels::mostWarnings);
  warnings.push_back(std::to_string(more) + (more == 1 ? " more warning" : " more warnings"));
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
    shorten(labels.warnings);
    for (LabelSpan& span : labels.spans)
      span.coder = span.coder.empty() ? coderOf(path) : span.coder;
    for (LabelTrack& track : labels.tracks)
      track.coder = track.coder.empty() ? coderOf(path) : track.coder;
    return labels;
  }
  throw Error({path, 0, {}},
              "no format of labels fits: expected ELAN .eaf, Praat TextGrid, events of BORIS or BIDS, labels of "
              "Audacity, or CSV "
              "with the columns start, end, value or time, value");
}

}  // namespace KV::recordings
