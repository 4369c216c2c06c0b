#include "study/studyinputs.hpp"

#include "study/filedigest.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/labelscopes.hpp>

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace KV::session
{

std::string pathIn(const Study& study, const std::string& path)
{
  return study.folder == "." ? path : (std::filesystem::path(study.folder) / path).string();
}

std::string withoutFolder(const Study& study, std::string text)
{
  constexpr std::string_view beforePaths = " '\"(";
  const std::string folder = pathIn(study, "");
  for (std::size_t at = text.find(folder); !folder.empty() && at != std::string::npos; at = text.find(folder, at))
  {
    if (at > 0 && beforePaths.find(text[at - 1]) == std::string_view::npos)
      at += folder.size();  // the end of a longer name
    else
    {
      text.erase(at, folder.size());
      ++at;  // the rest of this path may begin with the same name
    }
  }
  return text;
}

SessionInputs inputsOf(const Study& study, const StudySession& session)
{
  SessionInputs inputs;
  for (const Study::Input& input : session.files)
    inputs.inputs.push_back({pathIn(study, input.path), input.offset});
  inputs.file = session.name;
  return inputs;
}

std::unique_ptr<recordings::Reader> openStudySession(const Study& study, const StudySession& session)
{
  return openSession(inputsOf(study, session), [&study](const std::string& path) {
    return recordings::openRecording(path, study.format, study.reading);
  });
}

std::vector<ScopeSpan> scopesOf(const Study& study, const Study::Input& labels, std::vector<std::string>& warnings)
{
  const std::string path = pathIn(study, labels.path);
  const recordings::Labels read = recordings::readLabels(path);
  std::vector<std::string> some = read.warnings;
  std::vector<ScopeSpan> scopes;
  if (read.spans.empty())
    some.emplace_back("has no label");
  else
    scopes = scopesOf(read, {path, labels.tier}, static_cast<double>(labels.offset.count()) * 1e-9, some);
  for (const std::string& one : some)
    warnings.emplace_back(path).append(": ").append(one);
  return scopes;
}

std::uintmax_t bytesOf(const Study& study, const StudySession& session)
{
  std::uintmax_t bytes = 0;
  FileDigest digest;
  for (const Study::Input& input : session.files)
    if (lookAtFile(pathIn(study, input.path), digest))
      bytes += digest.bytes;
  return bytes;
}

}  // namespace KV::session
