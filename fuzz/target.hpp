#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

/// \file
/// The functions under test: they take any bytes, must not crash, and must keep their promises.

namespace fuzz
{

/// One function that takes bytes from outside. The corpus of `name` is in corpus/<name>/.
struct Target
{
  std::string_view name;
  void (*run)(std::string_view input);
};

/// Returns all targets.
const std::vector<Target>& targets();

/// \name The functions of the targets
/// @{
void fuzzOpenface(std::string_view input);
void fuzzPyfeat(std::string_view input);
void fuzzMediapipe(std::string_view input);
void fuzzBlendshapes(std::string_view input);
void fuzzLivelink(std::string_view input);
void fuzzRosbag2(std::string_view input);
void fuzzTidy(std::string_view input);
void fuzzLibreface(std::string_view input);
void fuzzWhisper(std::string_view input);
void fuzzXdf(std::string_view input);
void fuzzJsonl(std::string_view input);
void fuzzAnyRecording(std::string_view input);  ///< the format is detected
void fuzzMapping(std::string_view input);
void fuzzLabels(std::string_view input);
void fuzzGzip(std::string_view input);
void fuzzRosMessages(std::string_view input);
void fuzzRosbridge(std::string_view input);  ///< a text of rosbridge in each line
void fuzzStream(std::string_view input);
void fuzzServe(std::string_view input);  ///< lines as bodies and headers of requests
void fuzzStudy(std::string_view input);
void fuzzJson(std::string_view input);
void fuzzCbor(std::string_view input);
void fuzzCalls(std::string_view input);
void fuzzMessages(std::string_view input);  ///< of bags, made from the bytes
void fuzzMcap(std::string_view input);
void fuzzBagMetadata(std::string_view input);
void fuzzReport(std::string_view input);
void fuzzInspect(std::string_view input);
void fuzzWhy(std::string_view input);
void fuzzWatch(std::string_view input);
/// @}

/// Ends the program with the broken expectation; a finding for the fuzzer.
inline void expect(bool holds, const char* what)
{
  if (holds)
    return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

}  // namespace fuzz
