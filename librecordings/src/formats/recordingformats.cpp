#include "face/facereader.hpp"
#include "formats/filekind.hpp"
#include "jsonl/jsonlinesreader.hpp"
#include "libreface/librefacerows.hpp"
#include "livelink/livelinkrows.hpp"
#include "mediapipe/blendshapecsvrows.hpp"
#include "mediapipe/facelandmarkerrows.hpp"
#include "openface/openfacecolumns.hpp"
#include "openface/openfacerows.hpp"
#include "pyfeat/pyfeatrows.hpp"
#include "rosbag2/bagfolder.hpp"
#include "rosbag2/openbagfile.hpp"
#include "rosbag2/rosbagreader.hpp"
#include "tidy/tidycsvtable.hpp"
#include "tidy/tidyreader.hpp"
#include "whisper/whisperreader.hpp"
#include "xdf/xdfreader.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/openedrecording.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace KV::recordings
{
namespace
{
// [bytes] holds the header of thousands of columns
constexpr std::size_t headSize = std::size_t{64} << 10U;

template <typename Rows>
std::unique_ptr<Reader> readFaces(InputFile file, const ReadingOptions& options)
{
  return std::make_unique<FaceReader>(std::make_unique<Rows>(std::move(file), options), options);
}

std::unique_ptr<Reader> readJsonLines(InputFile file, const ReadingOptions&)
{
  return std::make_unique<JsonLinesReader>(std::move(file));
}

std::unique_ptr<Reader> readTidyCsv(InputFile file, const ReadingOptions&)
{
  return std::make_unique<TidyReader>(std::make_unique<TidyCsvTable>(std::move(file)));
}

std::unique_ptr<Reader> readWhisper(InputFile file, const ReadingOptions& options)
{
  return std::make_unique<WhisperReader>(std::move(file), options);
}

std::unique_ptr<Reader> readXdf(InputFile file, const ReadingOptions& options)
{
  return std::make_unique<XdfReader>(std::move(file), options);
}

template <auto read>
std::unique_ptr<Reader> openFile(const std::string& path, const ReadingOptions& options)
{
  return read(InputFile(path), options);
}

// A format that is read forward, from a file or a stream.
template <auto read>
Format forward(const char* name, const char* description, const char* missing, bool (*detect)(const std::string& head))
{
  return {name, description, missing, detect, openFile<read>, read, false};
}

// As above, of rows and columns.
template <auto read>
Format table(const char* name, const char* description, const char* missing, bool (*detect)(const std::string& head))
{
  return {name, description, missing, detect, openFile<read>, read, true};
}

std::unique_ptr<Reader> openRosbag(const std::string& path, const ReadingOptions& options)
{
  return std::make_unique<RosbagReader>(path, options);
}

std::string names()
{
  std::string text;
  for (const Format& format : recordingFormats())
    text += (text.empty() ? "" : ", ") + format.name + " (" + format.description + ")";
  return text;
}

// A line for each format.
std::string tried()
{
  std::string text;
  for (const Format& format : recordingFormats())
    text += "\n  no " + format.name + ": " + format.missing;
  return text;
}

const Format& formatNamed(const std::string& asked, const std::string& recording)
{
  const auto& formats = recordingFormats();
  const auto found =
      std::find_if(formats.begin(), formats.end(), [&asked](const Format& format) { return format.name == asked; });
  if (found == formats.end())
    throw Error({recording, 0, {}}, "there is no format '" + asked + "'; expected one of: " + names());
  return *found;
}

// Bytes from a pipe cannot be read twice.
void refuseToLookIntoPipes(const std::string& path)
{
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status) &&
      !std::filesystem::is_directory(status))
    throw Error({path, 0, {}}, "is not a regular file, so its format cannot be detected: name the format");
}

// The format of a file that begins with `head`; empty if it is unknown.
const Format* formatDetectedIn(const std::string& head)
{
  const auto& formats = recordingFormats();
  const auto found =
      std::find_if(formats.begin(), formats.end(), [&head](const Format& format) { return format.detect(head); });
  return found == formats.end() ? nullptr : &*found;
}

const Format& formatOfHead(const std::string& head, const std::string& path)
{
  if (head.empty())
    throw Error({path, 0, {}}, "the file is empty");
  const Format* const format = formatDetectedIn(head);
  if (format == nullptr)
    throw Error({path, 0, {}}, "the format is not known. The file looks like " + fileKind(head) + tried());
  return *format;
}

const Format& formatOf(const std::string& path)
{
  refuseToLookIntoPipes(path);
  if (isRosbagFolder(path))
    return formatNamed("rosbag2", path);
  return formatOfHead(InputFile::head(path, headSize), path);
}

}  // namespace

const std::vector<Format>& recordingFormats()
{
  static const std::vector<Format> formats = {
      table<readFaces<LiveLinkRows>>("livelink", "CSV of Live Link Face",
                                     "the first two columns are not Timecode and BlendShapeCount", looksLikeLiveLink),
      table<readFaces<PyFeatRows>>("pyfeat", "CSV of py-feat",
                                   "there is no column FaceScore or FaceRectX, and too few such as AU12 and Happy",
                                   looksLikePyFeat),
      table<readFaces<BlendshapeCsvRows>>("blendshapes", "CSV of MediaPipe blendshapes",
                                          "there are fewer than 4 columns such as mouthSmileLeft and jawOpen",
                                          looksLikeBlendshapeCsv),
      table<readFaces<OpenFaceRows>>("openface", "CSV of OpenFace 2 and older",
                                     "there are fewer than 2 columns such as frame, pose_Rx, gaze_angle_x and AU12_r",
                                     looksLikeOpenFace),
      table<readFaces<LibreFaceRows>>("libreface", "CSV of LibreFace",
                                      "there are fewer than 2 columns such as au_6_intensity", looksLikeLibreFace),
      table<readTidyCsv>("tidy", "CSV of single readings, such as touch, one in each row",
                         "there are no columns time and reading", looksLikeTidyCsv),
      forward<readFaces<FaceLandmarkerRows>>("mediapipe", "JSON of MediaPipe FaceLandmarker results",
                                             "there is no JSON with faceBlendshapes or faceLandmarks",
                                             looksLikeFaceLandmarker),
      forward<readWhisper>("whisper", "JSON of Whisper, with or without speakers",
                           "there is no JSON with segments, or with avg_logprob or no_speech_prob", looksLikeWhisper),
      forward<readXdf>("xdf", "recording of the Lab Streaming Layer",
                       "the file does not begin with XDF:", looksLikeXdf),
      {"rosbag2", "bag of ROS 2 in MCAP or SQLite with the topics of ROS4HRI", "the file is neither MCAP nor SQLite",
       looksLikeBagFile, openRosbag, nullptr, false},
      forward<readJsonLines>("jsonl", "JSON Lines of skeigiot", "the first line does not begin with {",
                             looksLikeJsonLines),
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
  catch (const Error&)
  {
    return true;
  }
}

std::unique_ptr<Reader> openRecording(const std::string& path, const std::string& format, const ReadingOptions& options)
{
  return (format.empty() ? formatOf(path) : formatNamed(format, path)).open(path, options);
}

std::unique_ptr<Reader> openRecording(std::istream& stream, const std::string& name, const std::string& format,
                                      const ReadingOptions& options)
{
  return openDetected(stream, name, format, options).reader;
}

OpenedRecording openDetected(std::istream& stream, const std::string& name, const std::string& format,
                             const ReadingOptions& options)
{
  InputFile file(stream, name);
  const Format& found = format.empty() ? formatOfHead(file.peek(headSize), name) : formatNamed(format, name);
  if (found.read == nullptr)
    throw Error({name, 0, {}}, "the format " + found.name + " cannot be read from a stream; expected a path");
  return {found.read(std::move(file), options), found.name};
}

}  // namespace KV::recordings
