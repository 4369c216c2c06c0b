#include "inputasfile.hpp"
#include "study/namepattern.hpp"
#include "target.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/session/study.hpp>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

/// Study files, and their patterns.
namespace fuzz
{

namespace
{

constexpr std::array<const char*, 6> paths = {
    "p01/hello/face.csv", "p01/hello_p01.csv", "aaaaaaaa-bbbbbbbb.csv", "a//b", "", "p/aaaaaaaaaaaaaaaaaaaaaaaaaaaa"};

/// Puts the values of the placeholders into the pattern.
std::string filled(const std::string& pattern, const std::map<std::string, std::string>& values)
{
  std::string text;
  for (std::size_t at = 0; at < pattern.size(); ++at)
  {
    const std::size_t end = pattern[at] == '{' ? pattern.find('}', at) : std::string::npos;
    text += end == std::string::npos ? std::string(1, pattern[at]) : values.at(pattern.substr(at + 1, end - at - 1));
    at = end == std::string::npos ? at : end;
  }
  return text;
}

void match(const std::string& text)
{
  const KV::session::NamePattern pattern(text);
  for (const std::string path : paths)
  {
    const auto values = pattern.match(path);
    if (!values)
      continue;
    expect(values->size() == pattern.placeholders().size(), "each placeholder has a value");
    for (const auto& [name, value] : *values)
      expect(!value.empty() && value.find('/') == std::string::npos, "a value is a part of a name");
    if (text.find('*') == std::string::npos)
      expect(filled(text, *values) == path, "a pattern with its values is the path");
  }
}

}  // namespace

void fuzzStudy(std::string_view input)
{
  const InputAsFile file(input);
  try
  {
    const KV::session::Study study = KV::session::readStudy(file.path());
    expect(!study.files.empty() || !study.sessions.empty(), "a study has files");
    for (const auto& files : study.files)
      match(files.pattern);
    for (const auto& labels : study.labels)
      match(labels.pattern);
  }
  catch (const KV::recordings::Error& error)
  {
    expect(*error.what() != '\0', "a study that cannot be read is complained of");
  }
}

}  // namespace fuzz
