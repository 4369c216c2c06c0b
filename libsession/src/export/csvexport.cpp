#include "export/csvtext.hpp"

#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/exportfields.hpp>
#include <skeigiot/session/exportformat.hpp>

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
  void _append(const boost::optional<Duration>& value)
  {
    if (value)
      appendExactSeconds(_line, *value);
  }
  void _append(const std::string& value) { appendCsvText(_line, value); }

  std::string& _line;
};

/// Writes every update as a line of comma-separated values.
///
/// Floats have the shortest text that reads back as the same number; truth values are 0 and 1; a missing value is an
/// empty field. Texts are quoted where necessary.
class CsvExport : public Exporter
{
public:
  explicit CsvExport(std::ostream& stream) : _stream(stream) {}

  void writeHeader() override
  {
    std::string header;
    forEachExportedField({}, Snapshot(), [&header](const char* name, const auto&) {
      header += (header.empty() ? "" : ",") + std::string(name);
    });
    _stream << header << '\n';
  }

  void personUpdated(const Snapshot& snapshot) override
  {
    _line.clear();
    forEachExportedField(session(), snapshot, CsvFields(_line));
    _line += '\n';
    _stream << _line;
  }

private:
  std::ostream& _stream;
  std::string _line;  // kept to reuse its memory
};

}  // namespace

ExportFormat csvExport()
{
  return {"csv", "every update as comma-separated values", "",
          [](std::ostream& stream) { return std::make_unique<CsvExport>(stream); }};
}

}  // namespace KV::session
