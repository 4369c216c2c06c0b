#include <skeigiot/session/studyplan.hpp>

#include "study/namepattern.hpp"
#include "study/studyfiles.hpp"

#include <skeigiot/recordings/error.hpp>
#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <utility>

namespace KV::session
{

namespace
{

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

Texts split(const std::string& text, char separator)
{
  Texts parts;
  std::istringstream stream(text);
  stream.exceptions(std::ios::badbit);  // else a lack of memory would cut the text
  for (std::string part; std::getline(stream, part, separator);)
    parts.push_back(part);
  return parts;
}

/// A path in parts: its folders, and the parts of its name between underscores.
struct Name
{
  std::string path;
  Texts slots;
  std::size_t folders = 0;
  std::string extensions;  ///< ".csv.gz"

  explicit Name(const std::string& text) : Name(text, split(text, '/')) {}

  Name(std::string text, const Texts& parts)
    : path(std::move(text)), slots(parts.begin(), parts.end() - 1), folders(slots.size())
  {
    const std::string& file = parts.back();
    const std::size_t dot = std::min(file.find('.', 1), file.size());
    extensions = file.substr(dot);
    for (const std::string& part : split(file.substr(0, dot), '_'))
      slots.push_back(part);
  }

  /// Files of one group have the same form and, unless it differs from file to file, the same last part.
  std::string form() const { return std::to_string(folders) + " " + std::to_string(slots.size()) + " " + extensions; }
};

/// Files of one kind, whose names have a pattern.
struct Group
{
  std::vector<Name> names;
  bool areLabels = false;
  std::string formats;  ///< for the comment

  std::set<std::string> valuesOf(std::size_t slot) const
  {
    std::set<std::string> values;
    for (const Name& name : names)
      values.insert(name.slots[slot]);
    return values;
  }
};

std::vector<Group> groupsOf(const Texts& paths)
{
  std::map<std::string, std::map<std::string, std::size_t>> lastParts;
  for (const std::string& path : paths)
  {
    const Name name(path);
    ++lastParts[name.form()][name.slots.back()];
  }
  std::map<std::string, Group> groups;
  for (const std::string& path : paths)
  {
    const Name name(path);
    const bool repeats = lastParts[name.form()][name.slots.back()] > 1 && name.slots.size() > 1;
    groups[name.form() + (repeats ? " " + name.slots.back() : "")].names.push_back(name);
  }
  std::vector<Group> list;
  list.reserve(groups.size());
  for (auto& [key, group] : groups)
    list.push_back(std::move(group));
  return list;
}

/// Gives the slots of a group names, the same for the same values in all groups.
class Placeholders
{
public:
  explicit Placeholders(const Group& first)
  {
    // The participant is the slot with the most values, the condition the one with the second most.
    std::vector<std::pair<std::size_t, std::size_t>> slots;  // minus the number of values, slot
    for (std::size_t slot = 0; slot < first.names.front().slots.size(); ++slot)
      if (const std::size_t count = first.valuesOf(slot).size(); count > 1 && !_nameOf(first, slot))
      {
        slots.emplace_back(count, slot);
        _values.emplace_back(std::string(), first.valuesOf(slot));
      }
    std::stable_sort(slots.begin(), slots.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    for (std::size_t i = 0; i < slots.size(); ++i)
    {
      const std::set<std::string> values = first.valuesOf(slots[i].second);
      for (auto& [name, known] : _values)
        if (known == values)
          name = i == 0 ? "participant" : i == 1 ? "condition" : "part" + std::to_string(i + 1);
    }
  }

  /// Returns the pattern of a group; empty if its parts are not those of the first group.
  std::string patternOf(const Group& group) const
  {
    std::string pattern;
    std::set<std::string> used;
    const Name& first = group.names.front();
    for (std::size_t slot = 0; slot < first.slots.size(); ++slot)
    {
      pattern += slot == 0 ? "" : slot <= first.folders ? "/" : "_";
      const std::string name = _best(group, slot);
      if (name.empty() && group.valuesOf(slot).size() > 1)
        return "";
      used.insert(name);
      pattern += name.empty() ? first.slots[slot] : "{" + name + "}";
    }
    used.erase("");
    return used.size() == _values.size() ? pattern + first.extensions : "";
  }

private:
  bool _nameOf(const Group& group, std::size_t slot) const
  {
    const std::set<std::string> values = group.valuesOf(slot);
    return std::any_of(_values.begin(), _values.end(), [&values](const auto& one) { return one.second == values; });
  }

  /// Returns the placeholder whose values have those of the slot, the one with the fewest others.
  std::string _best(const Group& group, std::size_t slot) const
  {
    const std::set<std::string> values = group.valuesOf(slot);
    const std::pair<std::string, std::set<std::string>>* best = nullptr;
    for (const auto& one : _values)
    {
      std::size_t shared = 0;
      for (const std::string& value : values)
        shared += one.second.count(value);
      if (2 * shared > values.size() && (best == nullptr || one.second.size() < best->second.size()))
        best = &one;
    }
    return best == nullptr ? "" : best->first;
  }

  std::vector<std::pair<std::string, std::set<std::string>>> _values;
};

/// Reads the kind of a few files of the group: labels, or recordings of which formats.
///
/// \return whether it is either
bool lookInto(Group& group, const std::string& folder)
{
  constexpr std::size_t mostRead = 3;
  std::set<std::string> formats;
  std::size_t labels = 0;
  std::size_t played = 0;
  for (std::size_t i = 0; i < std::min(mostRead, group.names.size()); ++i)
  {
    recordings::InterruptionCheck::ask();
    const std::string path = (fs::path(folder) / group.names[i].path).string();
    try
    {
      if (!isNamedAsLabels(path) && recordings::isRecording(path))
      {
        formats.insert(recordings::formatNameOf(path));
        ++played;
        continue;
      }
      formats.insert(recordings::readLabels(path).format);
      ++labels;
    }
    catch (const recordings::Error&)
    {
      continue;  // other files of the group may be good
    }
  }
  group.areLabels = labels > played;
  for (const std::string& format : formats)
    group.formats += (group.formats.empty() ? "" : ", ") + format;
  return !formats.empty();
}

bool isFace(const Group& group)
{
  constexpr std::array faces{"openface", "pyfeat", "blendshapes", "mediapipe", "livelink", "libreface", "rosbag2"};
  return std::any_of(faces.begin(), faces.end(),
                     [&group](const char* name) { return group.formats.find(name) != std::string::npos; });
}

/// Returns the text as a string of TOML. It is not named "quoted": std::quoted would be found, too, and fit better.
std::string asToml(const std::string& text)
{
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result = "\"";
  for (const char character : text)
  {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\')
      result += '\\';
    if (byte >= 0x20 && byte != 0x7f)
      result += character;
    else
      result.append({'\\', 'u', '0', '0', digits[byte >> 4U], digits[byte & 15U]});
  }
  return result + "\"";
}

/// A group with its pattern.
struct Kind
{
  Group group;
  std::string pattern;
};

/// Returns how many sessions the patterns find.
std::size_t countSessions(const std::vector<Kind>& kinds)
{
  std::set<std::map<std::string, std::string>> sessions;
  for (const Kind& kind : kinds)
  {
    const NamePattern pattern(kind.pattern);
    for (const Name& name : kind.group.names)
      if (const auto values = pattern.match(name.path))
        sessions.insert(*values);
  }
  return sessions.size();
}

/// The first kind is never optional: it sets the timing.
void write(std::ostream& out, const Kind& kind, std::size_t sessions, bool isFirst)
{
  const Group& group = kind.group;
  out << "\n[[" << (group.areLabels ? "labels" : "files") << "]]  # " << counted(group.names.size(), "file") << ": "
      << group.formats << "\npattern = " << asToml(kind.pattern) << "\n";
  if (group.names.size() < sessions)
    out << (isFirst ? "# " : "optional = true  # ") << sessions - group.names.size() << " of "
        << counted(sessions, "session") << ": no such file\n";
}

const char* const ending = R"(
# [[labels]]                # more files of labels; each label is a scope
# pattern = "{participant}/{condition}/coding.eaf"
# tier = "phases"           # only labels of this tier

# [[scopes]]                # a span that is judged in each session
# name = "greeting"
# from = 0                  # seconds since the start; "to" may be left out
# to = 12.5

# [[persons]]               # roles, where a recording has several persons
# number = 1
# role = "child"

# [[sessions]]              # changes of one session
# name = "p03/hello"
# left-out = "the camera fell"

[results]
updates = false             # true: keep each update of each person
forces = false              # true: keep each force

[options]                   # options of "skeigiot replay", by the same names
# fps = 30
# cycle = 10
)";

}  // namespace

std::string draftStudy(const std::string& folder)
{
  std::vector<Group> groups;
  Texts unknown;
  Texts paths = studyFilesIn(folder);
  paths.erase(std::remove_if(paths.begin(), paths.end(),
                             [](const std::string& path) { return fs::path(path).extension() == ".toml"; }),
              paths.end());
  for (Group& group : groupsOf(paths))
  {
    if (lookInto(group, folder))
      groups.push_back(std::move(group));
    else
      for (const Name& name : group.names)
        unknown.push_back(name.path);
  }
  std::stable_sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) {
    const auto rank = [](const Group& group) { return group.areLabels ? 2 : isFace(group) ? 0 : 1; };
    return std::pair(rank(a), b.names.size()) < std::pair(rank(b), a.names.size());
  });
  if (groups.empty() || groups.front().areLabels)
    throw recordings::Error({folder, 0, {}}, "there is no recording in this folder");

  const Placeholders placeholders(groups.front());
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // else a lack of memory would cut the text
  out << "# A study: which files make one session, and how they are read. Change what is not right, then run\n"
         "# \"skeigiot study check\". Paths are relative to the folder of this file.\n\n[study]\nversion = 1\nname = "
      << asToml(nameOfFolder(folder)) << "\nminimum-length = 5          # seconds; a shorter session is a problem\n";
  std::vector<Kind> kinds;
  for (const Group& group : groups)
  {
    const std::string pattern = placeholders.patternOf(group);
    if (!pattern.empty())
      kinds.push_back({group, pattern});
    else
      for (const Name& name : group.names)
        unknown.push_back(name.path);
  }
  const std::size_t sessions = countSessions(kinds);
  for (const Kind& kind : kinds)
    write(out, kind, sessions, &kind == &kinds.front());
  constexpr std::size_t mostNamed = 10;
  for (std::size_t i = 0; i < std::min(mostNamed, unknown.size()); ++i)
    out << (i == 0 ? "\n" : "") << "# not used: " << asToml(unknown[i]) << "\n";
  if (unknown.size() > mostNamed)
    out << "# not used: " << unknown.size() - mostNamed << " more\n";
  out << ending;
  return out.str();
}

}  // namespace KV::session
