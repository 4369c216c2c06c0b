#include "inputasfile.hpp"
#include "target.hpp"

#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <optional>
#include <string>

namespace fuzz
{

namespace
{

using KV::recordings::Step;

constexpr int mostEntries = 200;  // of one input; what comes behind is more of the same

/// Readings under each of several options; which is chosen by the length of the input, so that an input stays a file.
KV::recordings::ReadingOptions optionsFor(std::size_t length)
{
  KV::recordings::ReadingOptions options;
  switch (length % 4)
  {
    case 1:
      options.mirrored = true;
      options.cameraHeight = 1.5f;
      break;
    case 2:
      options.framesPerSecond = 25.;
      options.lineOfSight = false;
      break;
    case 3:
      options.minimalConfidence = 0.f;
      options.actionUnitFullScale = 3.f;
      options.personColumn = "person";
      break;
    default:
      break;
  }
  return options;
}

/// What was read can be written, and reads back as the same.
void expectRoundTrip(const Step& entry)
{
  const std::string text = KV::recordings::stepToJson(entry);
  expect(KV::recordings::stepToJson(KV::recordings::stepFromJson(text)) == text, "a step reads back as it was written");
}

/// Returns the next step; nothing at the end, or where the file cannot be read on.
std::optional<Step> nextOf(KV::recordings::Reader& reader)
{
  for (int badLines = 0; badLines < mostEntries; ++badLines)
  {
    try
    {
      const auto entry = reader.next();
      return entry ? std::optional<Step>(*entry) : std::nullopt;
    }
    catch (const KV::recordings::BadLine& error)
    {
      expect(*error.what() != '\0', "a bad line is complained of");
    }
    catch (const KV::recordings::Error&)
    {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

void readToItsEnd(KV::recordings::Reader& reader)
{
  expect(!reader.describe().empty(), "a recording is described");
  std::optional<ko::SystemClock::time_point> before;
  for (int i = 0; i < mostEntries; ++i)
  {
    const std::optional<Step> entry = nextOf(reader);
    if (!entry)
      break;
    expect(!before || entry->time >= *before, "times do not run backwards");
    before = entry->time;
    expectRoundTrip(*entry);
    expect(reader.progress() >= 0. && reader.progress() <= 1., "the progress is in its range");
  }
  reader.takeWarnings();
  reader.columns();
}

void read(std::string_view input, const std::string& format)
{
  const InputAsFile file(input);
  try
  {
    readToItsEnd(*KV::recordings::openRecording(file.path(), format, optionsFor(input.size())));
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a recording that cannot be read is complained of");
  }
}

}  // namespace

void fuzzOpenface(std::string_view input)
{
  read(input, "openface");
}

void fuzzPyfeat(std::string_view input)
{
  read(input, "pyfeat");
}

void fuzzMediapipe(std::string_view input)
{
  read(input, "mediapipe");
}

void fuzzBlendshapes(std::string_view input)
{
  read(input, "blendshapes");
}

void fuzzLivelink(std::string_view input)
{
  read(input, "livelink");
}

void fuzzRosbag2(std::string_view input)
{
  read(input, "rosbag2");
}

void fuzzTidy(std::string_view input)
{
  read(input, "tidy");
}

void fuzzJsonl(std::string_view input)
{
  read(input, "jsonl");
}

void fuzzAnyRecording(std::string_view input)
{
  read(input, "");
}

}  // namespace fuzz
