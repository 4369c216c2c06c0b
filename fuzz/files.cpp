#include "inputasfile.hpp"
#include "ros4hri/rosmessages.hpp"
#include "target.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <functional>
#include <string_view>

/// Files that are not recordings, and the messages in a bag.
namespace fuzz
{

namespace
{

void readLines(const std::string& path)
{
  KV::recordings::InputFile file(path);
  std::string_view line;
  std::size_t lines = 0;
  while (file.readLine(line))
  {
    expect(file.lineNumber() == ++lines, "lines are counted");
    expect(line.find('\n') == std::string_view::npos, "a line is one line");
  }
  expect(file.progress() == 1., "the end is the end");
}

void readBlocks(const std::string& path)
{
  KV::recordings::InputFile file(path);
  std::string_view block;
  while (file.readBlock(block))
    expect(!block.empty(), "a block holds something");
}

/// Returns whether the reading reached the end without a fault.
template <typename Read>
bool succeeds(Read read)
{
  try
  {
    read();
    return true;
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a file that cannot be read is complained of");
    return false;
  }
}

}  // namespace

void fuzzGzip(std::string_view input)
{
  const InputAsFile file(input);
  const std::string path = file.path();
  const bool byLines = succeeds([&path] { readLines(path); });
  const bool byBlocks = succeeds([&path] { readBlocks(path); });
  expect(byLines == byBlocks, "lines and blocks read alike");
  succeeds([&path] { KV::recordings::InputFile::head(path, 1000); });
}

void fuzzRosMessages(std::string_view input)
{
  using KV::recordings::RosData;
  static const std::vector<std::function<void(RosData&)>> readers = {
      [](RosData& data) { KV::recordings::readTransforms(data); },
      [](RosData& data) { KV::recordings::readIdsList(data); },
      [](RosData& data) { KV::recordings::readExpression(data); },
      [](RosData& data) { KV::recordings::readActionUnits(data); },
      [](RosData& data) { KV::recordings::readLandmarks(data); },
      [](RosData& data) { KV::recordings::readSpeech(data); },
      [](RosData& data) { KV::recordings::readSoftBiometrics(data); },
      [](RosData& data) { KV::recordings::readJointStates(data); },
      [](RosData& data) { KV::recordings::readClock(data); },
      [](RosData& data) { KV::recordings::readString(data); },
      [](RosData& data) { KV::recordings::readBool(data); }};
  for (const auto& reader : readers)
  {
    RosData data(input.begin(), input.end());
    try
    {
      reader(data);
    }
    catch (const KV::recordings::RosMessageError& error)
    {
      expect(*error.what() != '\0', "a message that cannot be read is complained of");
    }
  }
}

}  // namespace fuzz
