#include "export/csvexport.hpp"

#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/exportfields.hpp>

namespace KV::session
{

namespace
{

/// Appends the values of one line, separated by commas.
class CsvFields
{
public:
  explicit CsvFields(std::string& line) : _line(line) {}

  template <typename Value>
  void operator()(const char* /*name*/, const Value& value)
  {
    if (!_line.empty())
      _line += ',';
    _append(value);
  }

private:
  void _append(bool value) { _line += value ? '1' : '0'; }
  void _append(int value) { appendExact(_line, value); }
  void _append(float value) { appendExact(_line, value); }
  void _append(Duration value) { appendExactSeconds(_line, value); }
  void _append(const std::string& value) { _line += value; }

  std::string& _line;
};

}  // namespace

void CsvExport::writeHeader(std::ostream& stream)
{
  std::string header;
  forEachExportedField(1, Snapshot(), [&header](const char* name, const auto&) {
    header += (header.empty() ? "" : ",") + std::string(name);
  });
  stream << header << '\n';
}

void CsvExport::personUpdated(const Snapshot& snapshot)
{
  _line.clear();
  forEachExportedField(recording(), snapshot, CsvFields(_line));
  _line += '\n';
  _stream << _line;
}

}  // namespace KV::session
