#include "export/csvtext.hpp"
#include "export/summarycolumns.hpp"
#include "export/summaryrow.hpp"

#include <skeigiot/session/exactnumber.hpp>
#include <skeigiot/session/exportformat.hpp>
#include <skeigiot/session/names.hpp>
#include <skeigiot/session/summary.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

namespace KV::session
{

namespace
{

/// Appends the values of one line, separated by commas. NaN and infinity give an empty field.
class Fields
{
public:
  explicit Fields(std::string& line) : _line(line) {}

  void operator()(const char* /*name*/) { _separate(); }

  template <typename Value>
  void operator()(const char* /*name*/, const Value& value)
  {
    _separate();
    _append(value);
  }

private:
  void _separate()
  {
    if (!_isFirst)
      _line += ',';
    _isFirst = false;
  }

  void _append(int value) { appendExact(_line, value); }
  void _append(Duration value) { appendExactSeconds(_line, value); }
  void _append(const std::string& value) { appendCsvText(_line, value); }
  void _append(double value)
  {
    if (std::isfinite(value))
      appendExact(_line, value);
  }

  std::string& _line;
  bool _isFirst = true;
};

/// Writes a row for each person and scope of a session; a session without a person has a row of its own.
class SummaryExport : public Exporter
{
public:
  explicit SummaryExport(std::ostream& stream) : _stream(stream) {}

  void writeHeader() override
  {
    std::string header;
    for (const std::string& name : summaryColumns())
      header += (header.empty() ? "" : ",") + name;
    _stream << header << '\n';
  }

  void personUpdated(const Snapshot& snapshot) override { _summary->personUpdated(snapshot); }
  void ambianceUpdated(float agitation, KV::ExcitationState excitation) override
  {
    _summary->ambianceUpdated(agitation, excitation);
  }
  void scopeJudged(const ScopeVerdict& verdict) override { _summary->scopeJudged(verdict); }

  void endSession(const std::string& error) override
  {
    _summary->finish();
    for (const auto& [number, person] : _summary->persons())
    {
      for (const ScopeVerdict& scope : _summary->verdicts())
        _write({&scope, &person, number, &_summary->ambiance(), error});
      if (_summary->verdicts().empty())
        _write({nullptr, &person, number, &_summary->ambiance(), error});
    }
    if (_summary->persons().empty())
      _write({nullptr, nullptr, 0, &_summary->ambiance(), error});
    _summary.emplace();
  }

private:
  void _write(const SummaryRow& row)
  {
    std::string line;
    forEachSummaryColumn(session(), row, Fields(line));
    _stream << line << '\n';
  }

  std::ostream& _stream;
  std::optional<Summary> _summary{std::in_place};  // of the session that is under way
};

}  // namespace

std::vector<std::string> summaryColumns()
{
  const std::string none;
  std::vector<std::string> names;
  forEachSummaryColumn({}, SummaryRow{nullptr, nullptr, 0, nullptr, none},
                       [&names](const char* name, const auto&...) { names.emplace_back(name); });
  return names;
}

ExportFormat summaryExport()
{
  return {"summary", "a row for each person and scope as comma-separated values, with means and shares", "",
          [](std::ostream& stream) { return std::make_unique<SummaryExport>(stream); }};
}

}  // namespace KV::session
