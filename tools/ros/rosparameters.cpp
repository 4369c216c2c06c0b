#include "ros/rosparameters.hpp"

#include <skeigiot/recordings/quote.hpp>

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/exceptions.h>
#include <yaml-cpp/parser.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t longestFile = std::size_t{1} << 20U;  // [bytes]
constexpr std::string_view parametersKey = "ros__parameters";
constexpr std::size_t longestName = 80;  // that is written out; no parameter has a longer one
const char* const ofCommandLine = "--param";

bool areAllNodes(std::string_view name)
{
  return name == "/**" || name == "/*";
}

/// Takes the events of a parser. Nothing is kept but the parameters of the node, and the names of the groups that are
/// open. Aliases, which can make a small file great, are refused. So is a second value under the same name, which the
/// parser does not notice.
class Parameters : public YAML::EventHandler
{
public:
  /// Reads a file.
  Parameters(std::string file, std::string node) : _file(std::move(file)), _node(std::move(node)) {}

  /// Reads the value of one parameter of the command line.
  explicit Parameters(const std::string& parameter)
  {
    for (const std::string& name : {_node, std::string(parametersKey), parameter})
      _levels.push_back({0, name, true, true, {}});
  }

  const std::vector<RosParameter>& all() const { return _parameters; }

  /// \throws std::invalid_argument if the file has nothing for the node.
  void checkNode() const
  {
    if (_isNodeThere)
      return;
    std::string found;
    if (!_otherNode.empty())
      found = ", found " + recordings::quote(_otherNode) + " in line " + std::to_string(_lineOfOther + 1);
    throw std::invalid_argument(_file + ": has no parameters of the node '" + _node + "': expected '" + _node +
                                ":' or '/**:' with 'ros__parameters:' below it" + found);
  }

  /// \throws std::invalid_argument for an error of the parser.
  [[noreturn]] void refuseForm(const YAML::Exception& error) const { _refuse(error.mark, "is no YAML: " + error.msg); }

  void OnDocumentStart(const YAML::Mark&) override {}
  void OnDocumentEnd() override {}
  void OnAnchor(const YAML::Mark& mark, const std::string&) override { _refuseAlias(mark); }
  void OnAlias(const YAML::Mark& mark, YAML::anchor_t) override { _refuseAlias(mark); }
  void OnNull(const YAML::Mark& mark, YAML::anchor_t) override
  {
    if (_isNameNext())
      _refuse(mark, "a name is missing");
    if (_isParameter())  // the mark is behind it
      _refuseAt(_levels.back().line, "has no value");
    _valueEnds();
  }
  void OnScalar(const YAML::Mark& mark, const std::string&, YAML::anchor_t, const std::string& value) override
  {
    if (_isNameNext())
      return _takeName(mark, value);
    if (_isList())
    {
      _list += (_isListEmpty ? "" : ",") + value;
      _isListEmpty = false;
      return;
    }
    if (_isParameter())
      _add(value);
    else if (_areNamesExpected())
      _refuse(mark, "expected names with values below it, found " + recordings::quote(value));
    _valueEnds();
  }
  void OnSequenceStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override
  {
    _checkStart(mark, "is a list of lists");
    if (_areNamesExpected())
      _refuse(mark, "expected names with values below it, found a list");
    _list.clear();
    _isListEmpty = true;
    _levels.push_back({mark.line, {}, false, false, {}});
  }
  void OnSequenceEnd() override
  {
    _levels.pop_back();
    if (_isParameter())
      _add(std::exchange(_list, {}));
    _valueEnds();
  }
  void OnMapStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t, YAML::EmitterStyle::value) override
  {
    _checkStart(mark, "is a list of groups");
    _levels.push_back({mark.line, {}, true, false, {}});
  }
  void OnMapEnd() override
  {
    _levels.pop_back();
    _valueEnds();
  }

private:
  /// A map with the name whose value comes next, or a list.
  struct Level
  {
    int line;
    std::string name;
    bool isMap;
    bool hasName;
    std::map<std::string, int> names;  // of a map, with their lines
  };

  bool _isOfTheNode(std::string_view name) const
  {
    return areAllNodes(name) || name == _node || name == "/" + _node || name == "/**/" + _node;
  }

  bool _isList() const { return !_levels.empty() && !_levels.back().isMap; }
  bool _isNameNext() const { return !_levels.empty() && _levels.back().isMap && !_levels.back().hasName; }
  bool _isParameter() const
  {
    return _levels.size() > 2 && _isOfTheNode(_levels[0].name) && _levels[1].name == parametersKey;
  }
  bool _areNamesExpected() const
  {
    return _levels.empty() || (_levels.size() < 3 && _isOfTheNode(_levels.front().name));
  }

  void _checkStart(const YAML::Mark& mark, const std::string& whyNotInList) const
  {
    if (_isNameNext())
      _refuse(mark, "expected a name, found a list or a group");
    if (_isList() && _isParameter())
      _refuse(mark, whyNotInList);
  }

  void _takeName(const YAML::Mark& mark, const std::string& name)
  {
    Level& level = _levels.back();
    level.line = mark.line;
    level.name = name;
    level.hasName = true;
    const auto [earlier, isNew] = level.names.emplace(name, mark.line);
    if (!isNew)
      _refuseSecond(mark.line, earlier->second);
    if (_levels.size() == 1 && !_isOfTheNode(name) && _otherNode.empty())
    {
      _otherNode = name;
      _lineOfOther = mark.line;
    }
    if (_levels.size() != 2 || !_isOfTheNode(_levels.front().name))
      return;
    if (name != parametersKey)
      _refuse(mark, "expected 'ros__parameters'");
    _isNodeThere = true;
    _linesOfNode.clear();
  }

  void _valueEnds()
  {
    if (!_levels.empty())
      _levels.back().hasName = false;
  }

  // Groups and names with "." may mean the same parameter.
  void _add(const std::string& value)
  {
    const int line = _levels.back().line;
    const auto [earlier, isNew] = _linesOfNode.emplace(_names(2), line);
    if (!isNew)
      _refuseSecond(line, earlier->second);
    _parameters.push_back({_names(2), value, _placeOf(line), areAllNodes(_levels.front().name) && !_file.empty()});
  }

  /// The names from this level on; their beginning if they are long.
  std::string _names(std::size_t from) const
  {
    std::string names;
    for (std::size_t i = from; i < _levels.size(); ++i)
      if (_levels[i].hasName)
        names += (names.empty() ? "" : ".") + _levels[i].name;
    return names.size() > longestName ? names.substr(0, longestName) + "..." : names;
  }

  std::string _placeOf(int line) const
  {
    return _file.empty() ? ofCommandLine : _file + ": line " + std::to_string(line + 1);
  }

  [[noreturn]] void _refuseAlias(const YAML::Mark& mark) const { _refuse(mark, "anchors and aliases are not read"); }

  /// Refuses the present name.
  [[noreturn]] void _refuseSecond(int line, int lineOfFirst) const
  {
    _refuseAt(line, _file.empty() ? "is given twice"
                                  : "is given twice, for the first time in line " + std::to_string(lineOfFirst + 1));
  }

  [[noreturn]] void _refuse(const YAML::Mark& mark, const std::string& why) const { _refuseAt(mark.line, why); }

  [[noreturn]] void _refuseAt(int line, const std::string& why) const
  {
    const std::string names = _names(_levels.size() > 2 ? 2 : 0);
    const std::string place = _file.empty() ? "" : _placeOf(line) + ": ";  // else CLI11 names the option
    throw std::invalid_argument(place + (names.empty() ? "" : names + ": ") + why);
  }

  std::string _file;  // empty for the command line
  std::string _node;
  std::vector<Level> _levels;
  std::string _list;  // its values
  bool _isListEmpty = true;
  bool _isNodeThere = false;
  std::string _otherNode;  // the first one
  int _lineOfOther = 0;
  std::map<std::string, int> _linesOfNode;  // of the parameters of the present node
  std::vector<RosParameter> _parameters;
};

/// Reads all documents of the text.
void parse(const std::string& text, Parameters& parameters)
{
  try
  {
    std::istringstream stream(text);
    YAML::Parser parser(stream);
    while (parser.HandleNextDocument(parameters))
    {}
  }
  catch (const YAML::Exception& error)
  {
    parameters.refuseForm(error);
  }
}

}  // namespace

std::vector<RosParameter> readRosParameters(std::istream& text, const std::string& name, const std::string& node)
{
  std::string content(longestFile + 1, '\0');
  text.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(text.gcount()));
  if (content.size() > longestFile)
    throw std::invalid_argument(name + ": has more than " + std::to_string(longestFile) + " bytes");
  Parameters parameters(name, node);
  parse(content, parameters);
  parameters.checkNode();
  return parameters.all();
}

std::vector<RosParameter> readRosParameters(const std::string& file, const std::string& node)
{
  std::error_code error;
  if (!std::filesystem::exists(file, error))
    throw std::invalid_argument(file + ": there is no such file");
  std::ifstream stream(file, std::ios::binary);
  if (!stream || std::filesystem::is_directory(file, error))
    throw std::invalid_argument(file + ": cannot be read");
  return readRosParameters(stream, file, node);
}

std::vector<RosParameter> parseRosParameter(const std::string& text)
{
  const std::size_t sign = text.find(":=");
  if (sign == std::string::npos || sign == 0)
    throw std::invalid_argument("expected NAME:=VALUE, found " + recordings::quote(text));
  const std::string name = text.substr(0, sign);
  Parameters parameters(name);
  parse(text.substr(sign + 2), parameters);
  if (parameters.all().empty())
    throw std::invalid_argument(name + ": has no value");
  return parameters.all();
}

}  // namespace KV::tools
