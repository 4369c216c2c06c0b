#include <skeigiot/session/agreement.hpp>
#include <skeigiot/session/exactnumber.hpp>

#include <nlohmann/json.hpp>

#include <array>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;
using LeftOut = AgreementComparison::LeftOut;

constexpr std::array<std::pair<const char*, double LeftOut::*>, 5> reasons = {
    {{"noUpdate", &LeftOut::noUpdate},
     {"noLabel", &LeftOut::noLabel},
     {"contradiction", &LeftOut::contradiction},
     {"notSeen", &LeftOut::notSeen},
     {"unknownEstimate", &LeftOut::unknownEstimate}}};

Json orNull(const boost::optional<double>& value)
{
  return value ? Json(*value) : Json();
}

Json asJson(const AgreementAtDelay& at)
{
  Json json = {{"delay", at.delay}, {"compared", at.compared}, {"units", at.units}, {"measures", Json::array()}};
  for (const AgreementMeasure& measure : at.measures)
  {
    Json made = {{"name", measure.name}};
    if (!measure.ofClass.empty())
      made["class"] = measure.ofClass;
    made["value"] = orNull(measure.value);
    made["low"] = orNull(measure.low);
    made["high"] = orNull(measure.high);
    json["measures"].push_back(std::move(made));
  }
  if (!at.confusion.empty())
    json["confusion"] = at.confusion;
  return json;
}

Json asJson(const AgreementComparison& comparison)
{
  Json json = {{"quantity", comparison.quantity}, {"first", comparison.first}, {"second", comparison.second}};
  json["person"] = comparison.person ? Json(*comparison.person) : Json();
  if (!comparison.classes.empty())
    json["classes"] = comparison.classes;
  json["unit"] = comparison.unit;
  if (comparison.unit == "blocks")
    json["blockLength"] = comparison.blockLength;
  for (const auto& [name, seconds] : reasons)
    json["leftOut"][name] = comparison.leftOut.*seconds;
  json["undelayed"] = asJson(comparison.undelayed);
  json["best"] = comparison.best ? asJson(*comparison.best) : Json();
  return json;
}

std::string numberText(const boost::optional<double>& value)
{
  if (!value)
    return {};
  std::string text;
  appendExact(text, *value);
  return text;
}

/// Returns the text as a field of CSV.
std::string field(const std::string& text)
{
  if (text.find_first_of(",\"\r\n") == std::string::npos)
    return text;
  std::string quoted = "\"";
  for (const char character : text)
    quoted += character == '"' ? std::string("\"\"") : std::string(1, character);
  return quoted + "\"";
}

/// The rows of one comparison.
class CsvRows
{
public:
  CsvRows(std::ostream& stream, const AgreementComparison& comparison)
    : _stream(stream),
      _comparison(comparison),
      _begin(comparison.quantity + "," + field(comparison.first) + "," + field(comparison.second) + "," +
             (comparison.person ? std::to_string(*comparison.person) : "all"))
  {}

  void write()
  {
    for (const auto& [name, seconds] : reasons)
      _row("undelayed", 0., "leftOut", name, "", _comparison.leftOut.*seconds);
    _write("undelayed", _comparison.undelayed);
    if (_comparison.best)
      _write("best", *_comparison.best);
  }

private:
  void _write(const char* which, const AgreementAtDelay& at)
  {
    _row(which, at.delay, "compared", "", "", at.compared);
    for (const AgreementMeasure& measure : at.measures)
      _row(which, at.delay, measure.name, measure.ofClass, "", measure.value, measure.low, measure.high);
    for (std::size_t first = 0; first < at.confusion.size(); ++first)
      for (std::size_t second = 0; second < at.confusion.size(); ++second)
        _row(which, at.delay, "confusion", _comparison.classes[first], _comparison.classes[second],
             at.confusion[first][second]);
  }

  void _row(const char* which, double delay, const std::string& name, const std::string& what, const std::string& other,
            const boost::optional<double>& value, const boost::optional<double>& low = boost::none,
            const boost::optional<double>& high = boost::none)
  {
    _stream << _begin << ',' << which << ',' << numberText(delay) << ',' << name << ',' << what << ',' << other << ','
            << numberText(value) << ',' << numberText(low) << ',' << numberText(high) << '\n';
  }

  std::ostream& _stream;
  const AgreementComparison& _comparison;
  std::string _begin;
};

}  // namespace

void writeAsJson(std::ostream& stream, const Agreement& agreement)
{
  Json json = {{"seed", agreement.seed}, {"resamples", agreement.resamples}, {"warnings", agreement.warnings}};
  json["comparisons"] = Json::array();
  for (const AgreementComparison& comparison : agreement.comparisons)
    json["comparisons"].push_back(asJson(comparison));
  stream << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void writeAsCsv(std::ostream& stream, const Agreement& agreement)
{
  stream << "quantity,first,second,person,at,delay,measure,class,other_class,value,low,high\n";
  for (const AgreementComparison& comparison : agreement.comparisons)
    CsvRows(stream, comparison).write();
}

}  // namespace KV::session
