#include <skeigiot/session/study.hpp>

#include "study/studyfiles.hpp"
#include "study/studytoml.hpp"

#include <skeigiot/recordings/format.hpp>
#include <skeigiot/recordings/lookat.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/rest.hpp>
#include <skeigiot/recordings/signallimits.hpp>
#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/exactnumber.hpp>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace KV::session
{

namespace
{

using recordings::quote;

namespace limits = recordings::limits;

constexpr double greatestTime = 4e9;  // [s] more than a century

std::string contentsOf(const std::string& path)
{
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error)
    throw recordings::Error({path, 0, {}}, "cannot be read: " + error.message());
  if (size > limits::largestStudy)
    throw recordings::Error({path, 0, {}}, "is larger than 64 MiB, too large for a study file");
  std::ifstream file(path, std::ios::binary);
  if (!file)
    throw recordings::Error({path, 0, {}}, std::string("cannot be read: ") + std::strerror(errno));
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A name of TOML is in one line. Each dot in it is a level, for which toml++ takes a part of the stack.
void refuseDeepNames(const std::string& path, const std::string& text)
{
  std::uint32_t line = 1;
  std::size_t dots = 0;
  for (const char character : text)
  {
    dots += character == '.' ? 1 : 0;
    if (dots > limits::mostDotsInLineOfStudy)
      throw recordings::Error({path, line, {}}, "has more than " + std::to_string(limits::mostDotsInLineOfStudy) +
                                                    " dots in one line: divide the line");
    if (character != '\n')
      continue;
    ++line;
    dots = 0;
  }
}

Duration seconds(double value)
{
  return Duration(static_cast<Duration::rep>(std::llround(value * 1e9)));
}

Duration timeOf(const TomlTable& table, const char* field)
{
  const double value = table.number(field, 0.);
  if (!(std::abs(value) <= greatestTime))
    table.refuse(*table.table().get(field), field, "expected seconds from -4e9 to 4e9");
  return seconds(value);
}

/// Returns the complaint about a text that is not a pattern. Placeholders are names in braces, with text between them.
std::string complaintOf(const std::string& pattern)
{
  if (pattern.size() > limits::longestPatternOfStudy)
    return "a pattern has at most " + std::to_string(limits::longestPatternOfStudy) + " bytes";
  if (pattern.front() == '/')
    return "a pattern is relative to the folder of the study file, without a slash at the beginning";
  if (pattern.find("{scope}") != std::string::npos)
    return "a placeholder cannot be named scope, because scopes are the time spans of a session";
  bool isOpen = false;
  char before = '\0';
  for (const char character : pattern)
  {
    if (character == '{' && before == '}')
      return "two placeholders need text between them";
    if (character == '{' ? isOpen : character == '}' && (!isOpen || before == '{'))
      return "expected placeholders such as {participant}";
    if (isOpen && character != '}' && (std::isalnum(static_cast<unsigned char>(character)) == 0) && character != '_')
      return "a placeholder has letters, digits and underscores only";
    isOpen = character == '{' || (isOpen && character != '}');
    before = character;
  }
  return isOpen ? "expected placeholders such as {participant}" : "";
}

void readPattern(const TomlTable& table, Study::Files& files)
{
  files.pattern = table.neededText("pattern");
  if (const std::string complaint = complaintOf(files.pattern); !complaint.empty())
    table.refuse(*table.table().get("pattern"), "pattern", complaint + ", found " + quote(files.pattern));
  files.offset = timeOf(table, "offset");
  files.isOptional = table.flag("optional");
  files.line = table.line();
}

boost::optional<std::int32_t> personNumber(const TomlTable& table)
{
  if (!table.has("number"))
    return {};
  const toml::node& node = *table.table().get("number");
  const auto number = node.value_exact<std::int64_t>();
  if (!number || *number < std::numeric_limits<std::int32_t>::min() ||
      *number > std::numeric_limits<std::int32_t>::max())
    table.refuse(node, "number", "expected the number of a person in the recording");
  return static_cast<std::int32_t>(*number);
}

Study::Person readPerson(const TomlTable& table)
{
  table.knowOnly("number name role participant session");
  Study::Person person{personNumber(table),       table.text("name"),    table.text("role"),
                       table.text("participant"), table.text("session"), table.line()};
  if (person.number.has_value() == !person.name.empty())
    table.refuse(table.table(), "number", "expected either the number or the name of the person in the recordings");
  return person;
}

Study::Scope readScope(const TomlTable& table)
{
  table.knowOnly("name from to session");
  Study::Scope scope;
  scope.span.name = table.neededText("name");
  scope.span.from = timeOf(table, "from");
  scope.session = table.text("session");
  scope.line = table.line();
  if (table.has("to"))
  {
    scope.span.to = timeOf(table, "to");
    if (*scope.span.to < scope.span.from)
      table.refuse(*table.table().get("to"), "to", "a scope does not end before it begins");
  }
  return scope;
}

/// Reads a list whose items are paths, or tables with the path and more.
std::vector<Study::Input> readInputs(const TomlTable& table, const char* field)
{
  std::vector<Study::Input> inputs;
  const toml::node* const node = table.table().get(field);
  if (node == nullptr)
    return inputs;
  if (node->as_array() == nullptr || node->as_array()->empty())
    table.refuse(*node, field, "expected a list of paths");
  for (const toml::node& item : *node->as_array())
  {
    if (const auto path = item.value_exact<std::string>(); path && !path->empty())
    {
      inputs.push_back({*path, Duration(0), {}});
      continue;
    }
    if (item.as_table() == nullptr)
      table.refuse(item, field, "expected a path, or a table such as {path = \"face.csv\", offset = 0.5}");
    const TomlTable entry(table.path(), *item.as_table(), field);
    entry.knowOnly("path offset tier");
    inputs.push_back({entry.neededText("path"), timeOf(entry, "offset"), entry.text("tier")});
  }
  return inputs;
}

Study::Session readSession(const TomlTable& table)
{
  table.knowOnly("name participant condition files labels left-out");
  Study::Session session;
  session.name = table.neededText("name");
  if (table.has("participant"))
    session.participant = table.text("participant");
  if (table.has("condition"))
    session.condition = table.text("condition");
  session.files = readInputs(table, "files");
  session.labels = readInputs(table, "labels");
  session.leftOut = table.text("left-out");
  session.line = table.line();
  return session;
}

/// Reads the table of options: those of the command, by the same names.
class Options
{
public:
  Options(const TomlTable& table, Study& study) : _table(table), _study(study)
  {
    recordings::ReadingOptions& reading = study.reading;
    reading.rateName = "fps = ";
    reading.mappingName = "mapping = ";
    _add("format", [this](const std::string& text) { _study.format = _knownFormat(text); });
    _add("fps", [&reading](const std::string& text) { reading.framesPerSecond = _number(text, 1e-9, 1e9, "above 0"); });
    _add("mirrored", [&reading](const std::string& text) { reading.mirrored = _flag(text); });
    _add("look-at", [&reading](const std::string& text) { reading.lookAt = recordings::parseLookAt(text); });
    _add("rest", [&reading](const std::string& text) { reading.rest = recordings::parseRest(text); });
    _add("camera-height", [&reading](const std::string& text) {
      reading.cameraHeight = static_cast<float>(_number(text, -1000., 1000., "from -1000 to 1000"));
    });
    _add("min-confidence", [&reading](const std::string& text) {
      reading.minimalConfidence = static_cast<float>(_number(text, 0., 1., "from 0 to 1"));
    });
    _add("au-full-scale", [&reading](const std::string& text) {
      reading.actionUnitFullScale = static_cast<float>(_number(text, 1e-9, 1e9, "above 0"));
    });
    _add("mapping", [this, &reading](const std::string& text) {
      reading.mapping = (std::filesystem::path(_study.folder) / text).string();
    });
    _add("person-from", [&reading](const std::string& text) { reading.personColumn = text; });
    _add("skip-bad", [this](const std::string& text) { _study.skipBad = _flag(text); });
    _add("cycle", [this](const std::string& text) { _study.cycle = parseCycle(text); });
    for (const Boundary& boundary : boundaries())
      _add(boundary.option, [this, &boundary](const std::string& text) { _takeBoundary(boundary, text); });
  }

  void read()
  {
    const SavedBoundaries saved;  // they are only tried
    for (const auto& [key, node] : _table.table())
    {
      const std::string name(key.str());
      if (const auto option = _options.find(name); option != _options.end())
        _study.options[name] = _read(name, node, option->second);
      else
        _table.refuse(node, name, "is not an option; expected one of " + _names());
    }
  }

private:
  using Take = std::function<void(const std::string&)>;

  /// Returns the text of the option, which `take` has accepted.
  std::string _read(const std::string& name, const toml::node& node, const Take& take) const
  {
    std::string text = _textOf(name, node);
    try
    {
      take(text);
    }
    catch (const std::invalid_argument& error)
    {
      _table.refuse(node, name, error.what());
    }
    return text;
  }

  void _add(const std::string& name, Take take) { _options.emplace(name, std::move(take)); }

  std::string _names() const
  {
    std::string names;
    for (const auto& [name, take] : _options)
      names += (names.empty() ? "" : ", ") + name;
    return names;
  }

  std::string _textOf(const std::string& name, const toml::node& node) const
  {
    std::string text;
    if (const auto flag = node.value_exact<bool>())
      text = *flag ? "true" : "false";
    else if (const auto whole = node.value_exact<std::int64_t>())
      text = std::to_string(*whole);
    else if (const auto number = node.value_exact<double>())
      appendExact(text, *number);
    else if (const auto string = node.value_exact<std::string>())
      text = *string;
    if (text.empty())
      _table.refuse(node, name, "expected a text, a number, true or false");
    return text;
  }

  static double _number(const std::string& text, double least, double most, const std::string& which)
  {
    std::istringstream stream(text);
    stream.exceptions(std::ios::badbit);  // else a lack of memory would look like a wrong number
    stream.imbue(std::locale::classic());
    double number = 0.;
    if (!(stream >> number) || !stream.eof() || !(number >= least && number <= most))
      throw std::invalid_argument("expected a number " + which + ", found " + quote(text));
    return number;
  }

  static bool _flag(const std::string& text)
  {
    if (text != "true" && text != "false")
      throw std::invalid_argument("expected true or false, found " + quote(text));
    return text == "true";
  }

  static std::string _knownFormat(const std::string& text)
  {
    std::string names;
    for (const recordings::Format& format : recordings::recordingFormats())
    {
      if (format.name == text)
        return text;
      names += (names.empty() ? "" : ", ") + format.name;
    }
    throw std::invalid_argument("expected one of " + names + ", found " + quote(text));
  }

  void _takeBoundary(const Boundary& boundary, const std::string& text)
  {
    const auto value = static_cast<float>(_number(text, -1e9, 1e9, ""));
    if (!setBoundary(boundary, value))
      throw std::invalid_argument(boundaryRefusal(boundary, value));
    _study.boundaries[boundary.option] = value;
  }

  const TomlTable& _table;
  Study& _study;
  std::map<std::string, Take> _options;
};

const TomlTable* subtable(const TomlTable& root, const char* name, std::optional<TomlTable>& place)
{
  const toml::node* const node = root.table().get(name);
  if (node == nullptr)
    return nullptr;
  if (node->as_table() == nullptr)
    root.refuse(*node, name, std::string("expected a table: begin it with [") + name + "]");
  return &place.emplace(root.path(), *node->as_table(), name);
}

void readHead(const TomlTable& root, Study& study)
{
  std::optional<TomlTable> place;
  const TomlTable* const head = subtable(root, "study", place);
  if (head == nullptr)
    throw recordings::Error({study.path, 1, "study"},
                            "there is no table [study] with version = 1: is this a study file?");
  head->knowOnly("version name minimum-length greatest-difference");
  if (head->number("version", 0.) != studyFileVersion)
    head->refuse(head->table(), "version", "expected version = 1, the only version that this program reads");
  study.name = head->text("name", nameOfFolder(study.folder));
  for (const auto& [field, target] : {std::pair<const char*, double*>{"minimum-length", &study.minimalLength},
                                      {"greatest-difference", &study.greatestDifference}})
  {
    *target = head->number(field, *target);
    if (!(*target >= 0. && *target <= greatestTime))
      head->refuse(*head->table().get(field), field, "expected seconds from 0 on");
  }
}

void refuseTwice(const TomlTable& table, const std::string& name, std::set<std::string>& names)
{
  if (!names.insert(name).second)
    table.refuse(*table.table().get("name"), "name", "the session " + quote(name) + " is listed twice");
}

}  // namespace

TomlTable::TomlTable(const std::string& path, const toml::table& table, std::string name)
  : _path(path), _table(table), _name(std::move(name))
{}

void TomlTable::knowOnly(const std::string& known) const
{
  std::istringstream words(known);
  words.exceptions(std::ios::badbit);  // else a lack of memory would cut the list
  const std::set<std::string> names{std::istream_iterator<std::string>(words), {}};
  for (const auto& [key, node] : _table)
  {
    const std::string name(key.str());
    if (names.count(name) > 0)
      continue;
    std::string list;
    for (const std::string& one : names)
      list += (list.empty() ? "" : ", ") + one;
    refuse(node, name, "is not known here; expected " + list);
  }
}

std::string TomlTable::text(const char* field, const std::string& otherwise) const
{
  const toml::node* const node = _table.get(field);
  if (node == nullptr)
    return otherwise;
  const auto text = node->value_exact<std::string>();
  if (!text || text->empty() || text->find('\0') != std::string::npos)
    refuse(*node, field, "expected a text in quotes");
  return *text;
}

std::string TomlTable::neededText(const char* field) const
{
  if (!has(field))
    refuse(_table, field, "is missing");
  return text(field);
}

bool TomlTable::flag(const char* field) const
{
  const toml::node* const node = _table.get(field);
  if (node == nullptr)
    return false;
  const auto flag = node->value_exact<bool>();
  if (!flag)
    refuse(*node, field, "expected true or false");
  return *flag;
}

double TomlTable::number(const char* field, double otherwise) const
{
  const toml::node* const node = _table.get(field);
  if (node == nullptr)
    return otherwise;
  const auto number = node->value<double>();
  if (!number || !node->is_number() || !std::isfinite(*number))
    refuse(*node, field, "expected a number");
  return *number;
}

void TomlTable::refuse(const toml::node& node, const std::string& field, const std::string& message) const
{
  const std::string place = _name.empty() || field == _name ? field : _name + "." + field;
  throw recordings::Error({_path, node.source().begin.line, place}, message);
}

Study readStudy(const std::string& path)
{
  Study study;
  study.path = path;
  study.folder = std::filesystem::path(path).parent_path().string();
  if (study.folder.empty())
    study.folder = ".";
  toml::table table;
  try
  {
    const std::string text = contentsOf(path);
    refuseDeepNames(path, text);
    table = toml::parse(text);
  }
  catch (const toml::parse_error& error)
  {
    throw recordings::Error({path, error.source().begin.line, {}}, "is not TOML: " + std::string(error.description()));
  }
  const TomlTable root(path, table, "");
  root.knowOnly("study files labels persons scopes sessions options results");
  readHead(root, study);

  root.eachTable("files", [&study](const TomlTable& one) {
    one.knowOnly("pattern offset optional");
    readPattern(one, study.files.emplace_back());
  });
  root.eachTable("labels", [&study](const TomlTable& one) {
    one.knowOnly("pattern offset optional tier");
    readPattern(one, study.labels.emplace_back());
    study.labels.back().tier = one.text("tier");
  });
  root.eachTable("persons", [&study](const TomlTable& one) { study.persons.push_back(readPerson(one)); });
  root.eachTable("scopes", [&study](const TomlTable& one) { study.scopes.push_back(readScope(one)); });
  std::set<std::string> names;
  root.eachTable("sessions", [&study, &names](const TomlTable& one) {
    study.sessions.push_back(readSession(one));
    refuseTwice(one, study.sessions.back().name, names);
  });
  if (study.files.size() + study.labels.size() > limits::mostPatternsOfStudy)
    throw recordings::Error({path, 0, "files"}, "there are more than " + std::to_string(limits::mostPatternsOfStudy) +
                                                    " patterns of files and labels");
  if (study.files.empty() && study.sessions.empty())
    throw recordings::Error({path, 0, "files"}, "there is no [[files]] with a pattern, and no [[sessions]]");

  std::optional<TomlTable> place;
  if (const TomlTable* const results = subtable(root, "results", place))
  {
    results->knowOnly("updates forces");
    study.keepsUpdates = results->flag("updates");
    study.keepsForces = results->flag("forces");
  }
  std::optional<TomlTable> placeOfOptions;
  if (const TomlTable* const options = subtable(root, "options", placeOfOptions))
    Options(*options, study).read();
  return study;
}

}  // namespace KV::session
