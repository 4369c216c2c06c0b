#include "export/jsonlexport.hpp"

#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/exportfields.hpp>

#include <cmath>

namespace KV::session
{

namespace
{

/// Appends the members of one object. All texts are names of the library, in which nothing needs to be escaped.
class JsonFields
{
public:
  explicit JsonFields(std::string& line) : _line(line) {}

  template <typename Value>
  void operator()(const char* name, const Value& value)
  {
    _line += _line.empty() ? "{\"" : ",\"";
    _line += name;
    _line += "\":";
    _append(value);
  }

private:
  void _append(bool value) { _line += value ? "true" : "false"; }
  void _append(int value) { appendExact(_line, value); }
  void _append(Duration value) { appendExactSeconds(_line, value); }
  void _append(const std::string& value) { _line += '"' + value + '"'; }
  void _append(float value)
  {
    if (std::isfinite(value))
      appendExact(_line, value);
    else
      _line += "null";
  }

  std::string& _line;
};

}  // namespace

void JsonlExport::personUpdated(const Snapshot& snapshot)
{
  _line.clear();
  forEachExportedField(recording(), snapshot, JsonFields(_line));
  _line += "}\n";
  _stream << _line;
}

}  // namespace KV::session
