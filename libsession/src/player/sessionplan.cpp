#include <skeigiot/session/sessionplan.hpp>

#include <skeigiot/recordings/mergedrecording.hpp>
#include <skeigiot/session/wording.hpp>

#include <boost/chrono/duration.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;

using Duration = ko::SystemClock::duration;

constexpr double greatestOffset = 4e9;  // [s] either way: more than a century

/// A folder that is one recording: a bag.
bool isRecordingFolder(const fs::path& path, std::error_code& error)
{
  return fs::exists(path / "metadata.yaml", error);
}

bool isFolderOfRecordings(const std::string& path)
{
  std::error_code error;
  return fs::is_directory(path, error) && !isRecordingFolder(path, error);
}

/// Returns whether it may be a recording. A link without a target is not.
///
/// \param error why this is unknown: a link to itself, or a folder without permission to read
bool mayBeRecording(const fs::path& path, std::error_code& error)
{
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found)
    error.clear();
  return !error && (fs::is_regular_file(status) || (fs::is_directory(status) && isRecordingFolder(path, error)));
}

/// Returns the possible recordings, sorted by name, and notes those that cannot be examined.
std::vector<fs::path> sortedContents(const std::string& folder, std::vector<std::string>& notes)
{
  std::error_code error;
  std::vector<fs::path> paths;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
  {
    const fs::path& path = entry->path();
    std::error_code ofEntry;
    if (path.filename().string().front() == '.')
      continue;
    if (mayBeRecording(path, ofEntry))
      paths.push_back(path);
    if (ofEntry)
      notes.push_back(path.string() + ": skipped, since it cannot be read: " + ofEntry.message());
  }
  if (error)
    throw recordings::Error({folder, 0, {}}, "cannot be read: " + error.message());
  std::sort(paths.begin(), paths.end());
  std::sort(notes.begin(), notes.end());
  return paths;
}

std::string noteOn(const std::string& folder, const std::vector<std::string>& passedOver)
{
  constexpr std::size_t mostNamed = 3;
  std::string text = folder + ": skipped " + counted(passedOver.size(), "file") + " of unknown format: ";
  for (std::size_t i = 0; i < std::min(mostNamed, passedOver.size()); ++i)
    text += (i > 0 ? ", " : "") + passedOver[i];
  return text + (passedOver.size() > mostNamed ? ", ..." : "");
}

/// Adds the recordings of the folder. Exports name them by their paths inside the folder if `isOnly`, that is, if no
/// other folder or file is replayed with it.
void addContents(const std::string& folder, const std::string& format, bool isOnly, SessionPlan& plan)
{
  std::vector<std::string> passedOver;
  std::vector<std::string> notes;
  const std::size_t before = plan.sessions.size();
  for (const fs::path& path : sortedContents(folder, notes))
  {
    if (!format.empty() || recordings::isRecording(path.string()))
      plan.sessions.push_back({{{path.string(), Duration(0)}}, isOnly ? path.filename().string() : path.string()});
    else
      passedOver.push_back(path.filename().string());
  }
  if (plan.sessions.size() == before)
    throw recordings::Error({folder, 0, {}}, "there is no recording in this folder");
  plan.notes.insert(plan.notes.end(), notes.begin(), notes.end());
  if (!passedOver.empty())
    plan.notes.push_back(noteOn(folder, passedOver));
}

void refuseContradictions(const SessionArguments& arguments, std::size_t folders)
{
  const std::size_t files = arguments.paths.size() - folders;
  if (folders > 0 && files > 0 && !arguments.separately)
    throw PlanError(PlanFault::FilesBesideFolders,
                    "files named together are one session, but each recording of a folder is a session of its own");
  if (!arguments.offsets.empty() && (arguments.separately || folders > 0 || files < 2))
    throw PlanError(PlanFault::NothingToMove, "an offset needs another input in the same session");

  const std::set<std::string> paths(arguments.paths.begin(), arguments.paths.end());
  for (const auto& [path, offset] : arguments.offsets)
    if (paths.count(path) == 0)
      throw PlanError(PlanFault::NoSuchInput, "there is no input '" + path + "'");
  if (paths.size() < arguments.paths.size() && folders == 0 && !arguments.separately)
    throw PlanError(PlanFault::NamedTwice, "one input is named twice");
  if (!arguments.separately && files > SessionInputs::most)
    throw PlanError(PlanFault::TooManyInputs, std::to_string(files) +
                                                  " files named together are inputs of one session, which takes " +
                                                  std::to_string(SessionInputs::most) + " at most");
}

}  // namespace

std::string SessionInputs::name() const
{
  std::string text;
  for (const Input& input : inputs)
    text += (text.empty() ? "" : " + ") + input.path;
  return text;
}

SessionName SessionInputs::exportedAs(int number) const
{
  return {number, file.empty() ? name() : file};
}

SessionPlan planSessions(const SessionArguments& arguments)
{
  const auto& paths = arguments.paths;
  const auto folders = static_cast<std::size_t>(std::count_if(paths.begin(), paths.end(), isFolderOfRecordings));
  refuseContradictions(arguments, folders);

  SessionPlan plan;
  SessionInputs together;
  for (const std::string& path : paths)
  {
    const auto offset = arguments.offsets.find(path);
    if (isFolderOfRecordings(path))
      addContents(path, arguments.format, paths.size() == 1, plan);
    else if (arguments.separately)
      plan.sessions.push_back({{{path, Duration(0)}}});
    else
      together.inputs.push_back({path, offset == arguments.offsets.end() ? Duration(0) : offset->second});
  }
  if (!together.inputs.empty())
    plan.sessions.push_back(std::move(together));
  return plan;
}

void parseOffset(const std::string& text, std::map<std::string, ko::SystemClock::duration>& offsets)
{
  const std::size_t equals = text.rfind('=');  // a path may contain '=', a number may not
  const std::string wanted = "'" + text + "' is not FILE=SECONDS";
  if (equals == std::string::npos || equals == 0)
    throw std::invalid_argument(wanted);

  double seconds = 0.;
  const char* begin = text.data() + equals + 1;
  const char* const end = text.data() + text.size();
  begin += begin != end && *begin == '+' ? 1 : 0;
  const auto [rest, error] = std::from_chars(begin, end, seconds);
  if (error != std::errc() || rest != end || !(std::abs(seconds) <= greatestOffset))
    throw std::invalid_argument(wanted);
  const auto nanoseconds = static_cast<Duration::rep>(std::llround(seconds * 1e9));
  if (!offsets.emplace(text.substr(0, equals), Duration(nanoseconds)).second)
    throw std::invalid_argument("'" + text.substr(0, equals) + "' is moved twice");
}

std::unique_ptr<recordings::Reader> openSession(
    const SessionInputs& session,
    const std::function<std::unique_ptr<recordings::Reader>(const std::string& path)>& open)
{
  if (session.inputs.size() == 1)
    return open(session.inputs.front().path);
  std::vector<recordings::RecordingInput> inputs;
  for (const SessionInputs::Input& input : session.inputs)
    inputs.push_back({input.path, open(input.path), input.offset});
  return std::make_unique<recordings::MergedRecording>(std::move(inputs));
}

}  // namespace KV::session
