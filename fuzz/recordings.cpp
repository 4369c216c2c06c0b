#include "inputasfile.hpp"
#include "target.hpp"

#include <skeigiot/recordings/observationjson.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <ko/systemclock.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace fuzz
{

namespace
{

using KV::recordings::Step;

constexpr int mostSteps = 200;  // of one input; further steps would test nothing new

/// Reads with each of several options; the length of the input chooses the options, so that an input stays a file.
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

/// All steps that were read can be written, and read back as the same.
void expectRoundTrip(const Step& step)
{
  const std::string text = KV::recordings::stepToJson(step);
  expect(KV::recordings::stepToJson(KV::recordings::stepFromJson(text)) == text, "a step reads back as it was written");
}

/// Checks each step on its way into a session.
class Steps : public KV::session::SessionObserver
{
public:
  int count() const { return _count; }

  void recordingDescribed(const std::vector<std::string>& description) override
  {
    expect(!description.empty(), "a recording is described");
  }

  void stepBegins(const Step& step) override
  {
    ++_count;
    expect(!_before || step.time >= *_before, "times do not run backwards");
    _before = step.time;
    expectRoundTrip(step);
  }

private:
  int _count = 0;
  std::optional<ko::SystemClock::time_point> _before;
};

void play(const InputAsFile& file, const std::string& format, const KV::recordings::ReadingOptions& reading)
{
  Steps steps;
  KV::session::PlayerOptions options;
  options.skipBad = true;
  const KV::session::Player player(options, [&steps](const KV::session::Progress& progress) {
    expect(progress.share >= 0. && progress.share <= 1., "the progress is in its range");
    return steps.count() < mostSteps;
  });
  const KV::session::Outcome outcome =
      player.play([&] { return KV::recordings::openRecording(file.path(), format, reading); }, {&steps});
  expect(!outcome.error || *outcome.error->what() != '\0', "a recording that cannot be read is complained of");
  expect(outcome.badLines == 0 || !outcome.firstBadLine.empty(), "a bad line is complained of");
}

void play(std::string_view input, const std::string& format)
{
  play(InputAsFile(input), format, optionsFor(input.size()));
}

}  // namespace

void fuzzOpenface(std::string_view input)
{
  play(input, "openface");
}

void fuzzPyfeat(std::string_view input)
{
  play(input, "pyfeat");
}

void fuzzMediapipe(std::string_view input)
{
  play(input, "mediapipe");
}

void fuzzBlendshapes(std::string_view input)
{
  play(input, "blendshapes");
}

void fuzzLivelink(std::string_view input)
{
  play(input, "livelink");
}

void fuzzRosbag2(std::string_view input)
{
  play(input, "rosbag2");
}

void fuzzLibreface(std::string_view input)
{
  play(input, "libreface");
}

void fuzzTidy(std::string_view input)
{
  play(input, "tidy");
}

void fuzzWhisper(std::string_view input)
{
  play(input, "whisper");
}

void fuzzXdf(std::string_view input)
{
  play(input, "xdf");
}

void fuzzJsonl(std::string_view input)
{
  play(input, "jsonl");
}

void fuzzAnyRecording(std::string_view input)
{
  play(input, "");
}

/// The mapping of a face whose action units are all there.
void fuzzMapping(std::string_view input)
{
  const InputAsFile mapping(input);
  const InputAsFile face(
      "frame,face_id,timestamp,confidence,success,AU01_r,AU02_r,AU04_r,AU05_r,AU06_r,AU07_r,AU12_r,AU15_r,AU23_r,AU25_"
      "r,"
      "AU26_r\n"
      "1,0,0,0.98,1,0.15,1.7,0.3,0.4,1.7,3.3,0.5,0.9,2.5,3.8,2.3\n"
      "2,0,0.033,0.98,1,3.3,0,2.3,2.6,1.5,2.2,5,0.2,0.8,2.7,1.7\n");
  KV::recordings::ReadingOptions options;
  options.mapping = mapping.path();
  play(face, "openface", options);
}

}  // namespace fuzz
