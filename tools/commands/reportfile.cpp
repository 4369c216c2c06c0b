#include "commands/reportfile.hpp"

#include "cli/messages.hpp"

#include <sstream>

namespace KV::tools
{

namespace
{

std::vector<std::string> pathsOf(const session::SessionInputs& session)
{
  std::vector<std::string> paths;
  for (const session::SessionInputs::Input& input : session.inputs)
    paths.push_back(input.path);
  return paths;
}

/// Returns the lines that a terminal shows of the messages.
std::vector<std::string> linesOf(const std::vector<std::string>& messages)
{
  std::vector<std::string> lines;
  for (const std::string& message : messages)
  {
    std::istringstream stream(Messages::line(message));
    for (std::string line; std::getline(stream, line);)
      lines.push_back(line);
  }
  return lines;
}

}  // namespace

void ReportFile::commit(const session::SessionInputs& session, const std::vector<std::string>& messages)
{
  _report.write(_file.stream(), pathsOf(session), linesOf(messages));
  _file.commit();
}

}  // namespace KV::tools
