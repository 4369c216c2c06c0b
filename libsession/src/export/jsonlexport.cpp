#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/exportfields.hpp>
#include <skeigiot/session/exportformat.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string>

namespace KV::session
{

namespace
{

using Json = nlohmann::json;

/// Appends the members of one object. A person without a name has no member name.
class JsonFields
{
public:
  explicit JsonFields(std::string& line) : _line(line) {}

  template <typename Value>
  void operator()(const char* name, const Value& value)
  {
    if (isNameOfNobody(name, value))
      return;
    _line += _line.empty() ? "{\"" : ",\"";
    _line += name;
    _line += "\":";
    _append(value);
  }

private:
  void _append(bool value) { _line += value ? "true" : "false"; }
  void _append(int value) { appendExact(_line, value); }
  void _append(Duration value) { appendExactSeconds(_line, value); }
  void _append(const boost::optional<Duration>& value)
  {
    if (value)
      appendExactSeconds(_line, *value);
    else
      _line += "null";
  }
  void _append(const std::string& value)
  {
    const auto isPlain = [](char character) {
      return character >= ' ' && character <= '~' && character != '"' && character != '\\';
    };
    if (std::all_of(value.begin(), value.end(), isPlain))
      _line += '"' + value + '"';
    else  // the name of a file need not be UTF-8
      _line += Json(value).dump(-1, ' ', false, Json::error_handler_t::replace);
  }
  void _append(float value)
  {
    if (std::isfinite(value))
      appendExact(_line, value);
    else
      _line += "null";
  }

  std::string& _line;
};

/// Writes every update as a JSON object on a line of its own.
///
/// Writes a float as the shortest text that reads back as the same number. NaN and infinity become null.
class JsonlExport : public Exporter
{
public:
  explicit JsonlExport(std::ostream& stream) : _stream(stream) {}

  void personUpdated(const Snapshot& snapshot) override
  {
    _line.clear();
    forEachExportedField(session(), snapshot, JsonFields(_line));
    _line += "}\n";
    _stream << _line;
  }

private:
  std::ostream& _stream;
  std::string _line;  // kept to reuse its memory
};

}  // namespace

ExportFormat jsonlExport()
{
  return {"jsonl", "every update as JSON Lines", "",
          [](std::ostream& stream) { return std::make_unique<JsonlExport>(stream); }};
}

}  // namespace KV::session
