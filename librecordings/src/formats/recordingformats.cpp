#include "recording.hpp"

#include "blendshapecsvrows.hpp"
#include "facelandmarkerrows.hpp"
#include "facereader.hpp"
#include "inputfile.hpp"
#include "jsonlinesreader.hpp"
#include "livelinkrows.hpp"
#include "openfacecolumns.hpp"
#include "openfacerows.hpp"
#include "pyfeatrows.hpp"
#include "rosbagreader.hpp"
#include "tidycsvtable.hpp"
#include "tidyreader.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace tools
{
namespace
{
// [bytes] holds the header of thousands of columns
constexpr std::size_t headSize = std::size_t{64} << 10U;

template <typename Rows>
std::unique_ptr<RecordingReader> openFaces(const std::string& path, const ReadingOptions& options)
{
  return std::make_unique<FaceReader>(std::make_unique<Rows>(path, options), options);
}

std::unique_ptr<RecordingReader> openJsonLines(const std::string& path, const ReadingOptions&)
{
  return std::make_unique<JsonLinesReader>(path);
}

std::unique_ptr<RecordingReader> openTidyCsv(const std::string& path, const ReadingOptions&)
{
  return std::make_unique<TidyReader>(std::make_unique<TidyCsvTable>(path));
}

std::unique_ptr<RecordingReader> openRosbag(const std::string& path, const ReadingOptions& options)
{
  return std::make_unique<RosbagReader>(path, options);
}

std::string names()
{
  std::string text;
  for (const RecordingFormat& format : recordingFormats())
    text += (text.empty() ? "" : ", ") + format.name + " (" + format.description + ")";
  return text;
}

const RecordingFormat& formatNamed(const std::string& name, const std::string& path)
{
  const auto& formats = recordingFormats();
  const auto found = std::find_if(formats.begin(), formats.end(),
                                  [&name](const RecordingFormat& format) { return format.name == name; });
  if (found == formats.end())
    throw RecordingError({path, 0, {}}, "there is no format '" + name + "'; expected one of: " + names());
  return *found;
}

// What comes through a pipe cannot be read twice.
void refuseToLookIntoPipes(const std::string& path)
{
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
      !std::filesystem::is_directory(status))
    throw RecordingError({path, 0, {}}, "the format of what is no regular file cannot be detected; expected its name");
}

// The format of a file that begins with `head`; none if that is not known.
const RecordingFormat* formatDetectedIn(const std::string& head)
{
  const auto& formats = recordingFormats();
  const auto found = std::find_if(formats.begin(), formats.end(),
                                  [&head](const RecordingFormat& format) { return format.detect(head); });
  return found == formats.end() ? nullptr : &*found;
}

const RecordingFormat& formatOf(const std::string& path)
{
  refuseToLookIntoPipes(path);
  if (isRosbagFolder(path))
    return formatNamed("rosbag2", path);
  const std::string head = InputFile::head(path, headSize);
  if (head.empty())
    throw RecordingError({path, 0, {}}, "the file is empty");
  const RecordingFormat* const format = formatDetectedIn(head);
  if (format == nullptr)
    throw RecordingError({path, 0, {}}, "the format is not known; expected one of: " + names());
  return *format;
}

}  // namespace

const std::vector<RecordingFormat>& recordingFormats()
{
  static const std::vector<RecordingFormat> formats = {
      {"livelink", "CSV of Live Link Face", looksLikeLiveLink, openFaces<LiveLinkRows>},
      {"pyfeat", "CSV of py-feat", looksLikePyFeat, openFaces<PyFeatRows>},
      {"blendshapes", "CSV of MediaPipe blendshapes", looksLikeBlendshapeCsv, openFaces<BlendshapeCsvRows>},
      {"openface", "CSV of OpenFace 2 and older", looksLikeOpenFace, openFaces<OpenFaceRows>},
      {"tidy", "CSV of single readings, for all that no front end tells", looksLikeTidyCsv, openTidyCsv},
      {"mediapipe", "JSON of MediaPipe FaceLandmarker results", looksLikeFaceLandmarker, openFaces<FaceLandmarkerRows>},
      {"rosbag2", "bag of ROS 2 in SQLite with the topics of ROS4HRI", looksLikeRosbag, openRosbag},
      {"jsonl", "JSON Lines of skeigiot", looksLikeJsonLines, openJsonLines},
  };
  return formats;
}

std::string formatNameOf(const std::string& path)
{
  return formatOf(path).name;
}

bool isRecording(const std::string& path)
{
  try
  {
    return formatDetectedIn(InputFile::head(path, headSize)) != nullptr;
  }
  catch (const RecordingError&)
  {
    return true;
  }
}

std::unique_ptr<RecordingReader> openRecording(const std::string& path, const std::string& format,
                                               const ReadingOptions& options)
{
  return (format.empty() ? formatOf(path) : formatNamed(format, path)).open(path, options);
}

}  // namespace tools
