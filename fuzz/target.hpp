#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

/// \file
/// What is fuzzed: functions that take any bytes and must neither crash nor break what they are held to.

namespace fuzz
{

/// One thing that takes bytes from outside. The corpus of `name` lies in corpus/<name>/.
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
void fuzzJsonl(std::string_view input);
void fuzzAnyRecording(std::string_view input);  ///< the format is found out
void fuzzMapping(std::string_view input);
void fuzzLabels(std::string_view input);
void fuzzGzip(std::string_view input);
void fuzzRosMessages(std::string_view input);
void fuzzStream(std::string_view input);
void fuzzJson(std::string_view input);
void fuzzCbor(std::string_view input);
void fuzzCalls(std::string_view input);
void fuzzMessages(std::string_view input);  ///< of bags, made of the bytes
void fuzzReport(std::string_view input);
void fuzzInspect(std::string_view input);
void fuzzWhy(std::string_view input);
void fuzzWatch(std::string_view input);
/// @}

/// Ends the program with what was expected and is not so; a finding for the fuzzer.
inline void expect(bool holds, const char* what)
{
  if (holds)
    return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}

}  // namespace fuzz
