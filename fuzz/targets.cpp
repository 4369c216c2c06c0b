#include "target.hpp"

namespace fuzz
{

const std::vector<Target>& targets()
{
  static const std::vector<Target> all = {
      {"openface", fuzzOpenface},
      {"pyfeat", fuzzPyfeat},
      {"mediapipe", fuzzMediapipe},
      {"blendshapes", fuzzBlendshapes},
      {"livelink", fuzzLivelink},
      {"rosbag2", fuzzRosbag2},
      {"tidy", fuzzTidy},
      {"libreface", fuzzLibreface},
      {"whisper", fuzzWhisper},
      {"xdf", fuzzXdf},
      {"jsonl", fuzzJsonl},
      {"anyrecording", fuzzAnyRecording},
      {"mapping", fuzzMapping},
      {"labels", fuzzLabels},
      {"gzip", fuzzGzip},
      {"rosmessages", fuzzRosMessages},
      {"rosbridge", fuzzRosbridge},
      {"stream", fuzzStream},
      {"serve", fuzzServe},
      {"study", fuzzStudy},
      {"json", fuzzJson},
      {"cbor", fuzzCbor},
      {"calls", fuzzCalls},
      {"messages", fuzzMessages},
      {"mcap", fuzzMcap},
      {"bagmetadata", fuzzBagMetadata},
      {"report", fuzzReport},
      {"inspect", fuzzInspect},
      {"why", fuzzWhy},
      {"watch", fuzzWatch},
  };
  return all;
}

}  // namespace fuzz
