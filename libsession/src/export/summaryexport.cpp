#include "export/csvtext.hpp"
#include "export/summarycolumns.hpp"

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

/// Subject of a row; null where the row has no such subject.
struct Row
{
  const ScopeVerdict* scope = nullptr;
  const PersonSummary* person = nullptr;  ///< of the whole recording, finished
  std::int32_t number = 0;                ///< of the person
  const Summary::Ambiance* ambiance = nullptr;
  const std::string& error;
};

/// Returns what there is to say of the person in the scope; of the whole recording, if there is no scope.
ScopeVerdict::OfPerson ofPersonIn(const Row& row)
{
  if (row.person == nullptr)
    return {};
  if (row.scope != nullptr)
    return row.scope->of(row.number);
  return {"", row.person->updates(), *row.person};
}

/// Hands every column to `field`, which is called with its name and a number, a duration or a text, or with its name
/// alone where there is no value. The one place that says what a summary holds.
template <typename Field>
void forEachColumn(const SessionName& session, const Row& row, Field&& field)
{
  const auto maybe = [&field](const char* name, bool isThere, auto value) {
    if (isThere)
      field(name, value());
    else
      field(name);
  };
  const bool hasScope = row.scope != nullptr;
  const bool hasPerson = row.person != nullptr;
  const ScopeVerdict::OfPerson verdict = ofPersonIn(row);
  const PersonSummary& summary = verdict.summary;
  const bool hasUpdates = summary.updates() > 0;

  field("recording", session.number);
  field("file", session.file);
  maybe("person", hasPerson, [&] { return row.number; });
  field("name", hasPerson ? row.person->name() : std::string());
  maybe("scope", hasScope, [&] { return row.scope->name; });
  maybe("start", hasScope, [&] { return row.scope->from; });
  maybe("stop", hasScope, [&] { return row.scope->to; });
  maybe("end", hasScope, [&] { return std::string(scopeEndName(row.scope->end)); });
  field("verdict", verdict.word);
  maybe("updates", hasPerson, [&] { return static_cast<int>(verdict.updates); });
  maybe("first", hasUpdates, [&] { return summary.from(); });
  maybe("last", hasUpdates, [&] { return summary.to(); });
  maybe("seen", hasUpdates, [&] { return summary.seenShare(); });

  const bool hasValence = hasUpdates && summary.isValenceKnown();
  maybe("valence", hasValence, [&] { return summary.valence(); });
  maybe("valence_confidence", hasValence, [&] { return summary.valenceConfidence(); });
  maybe("valence_known", hasUpdates, [&] { return summary.valenceKnownShare(); });
  const bool hasAttention = hasUpdates && summary.isAttentionKnown();
  maybe("attention", hasAttention, [&] { return summary.attention(); });
  maybe("attention_confidence", hasAttention, [&] { return summary.attentionConfidence(); });
  maybe("attention_known", hasUpdates, [&] { return summary.attentionKnownShare(); });
  maybe("engaged", hasAttention, [&] { return summary.lookingAtRobotShare(); });
  maybe("strictly_engaged", hasAttention, [&] { return summary.strictlyLookingAtRobotShare(); });

  for (std::int32_t zone = 0; zone <= static_cast<std::int32_t>(ko::human::AttentionState::LookingDownRight); ++zone)
  {
    const auto state = static_cast<ko::human::AttentionState>(zone);
    maybe(("zone_" + zoneName(state)).c_str(), hasUpdates, [&] { return summary.share(state); });
  }
  for (const KV::PleasureState pleasure :
       {KV::PleasurePositive, KV::PleasureNeutral, KV::PleasureNegative, KV::PleasureUnknown})
    maybe(("pleasure_" + pleasureName(pleasure)).c_str(), hasUpdates, [&] { return summary.share(pleasure); });

  const bool hasAmbiance = row.ambiance != nullptr && row.ambiance->updates > 0;
  const auto perUpdate = [&row](double sum) { return sum / static_cast<double>(row.ambiance->updates); };
  maybe("agitation", hasAmbiance, [&] { return perUpdate(row.ambiance->agitation); });
  maybe("agitation_at_end", hasAmbiance, [&] { return static_cast<double>(row.ambiance->lastAgitation); });
  maybe("excited", hasAmbiance, [&] { return perUpdate(static_cast<double>(row.ambiance->excited)); });
  field("error", row.error);
}

/// Appends the values of one line, separated by commas. What is no number is empty.
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
  void _write(const Row& row)
  {
    std::string line;
    forEachColumn(session(), row, Fields(line));
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
  forEachColumn({}, Row{nullptr, nullptr, 0, nullptr, none},
                [&names](const char* name, const auto&...) { names.emplace_back(name); });
  return names;
}

ExportFormat summaryExport()
{
  return {"summary", "a row for each person and scope as comma-separated values, with means and shares", "",
          [](std::ostream& stream) { return std::make_unique<SummaryExport>(stream); }};
}

}  // namespace KV::session
