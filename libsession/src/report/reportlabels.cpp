#include "report/reportlabels.hpp"

#include "agreement/codedlabels.hpp"
#include "report/base64.hpp"

#include <skeigiot/session/labelmapping.hpp>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <utility>

namespace KV::session
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Spans of time with the text of each, as the page draws them in a lane.
class Ribbon
{
public:
  void add(double from, double to, const std::string& text)
  {
    _from.push_back(from);
    _to.push_back(to);
    _texts.push_back(text);
  }

  Json json(const std::string& coder, const std::string& quantity) const
  {
    return {{"coder", coder}, {"quantity", quantity}, {"from", base64(_from)}, {"to", base64(_to)}, {"texts", _texts}};
  }

private:
  std::vector<double> _from;
  std::vector<double> _to;
  std::vector<std::string> _texts;
};

Json stateRibbon(const Course& course, const LabelQuantity& quantity, const std::string& coder)
{
  Ribbon ribbon;
  for (const CoursePiece& piece : course)
    ribbon.add(piece.from, piece.to,
               piece.what >= 0 ? quantity.classes.at(static_cast<std::size_t>(piece.what)) : "contradiction");
  return ribbon.json(coder, quantity.name);
}

Json otherRibbon(std::vector<recordings::LabelSpan> spans, const std::string& coder, const std::string& tier)
{
  std::stable_sort(spans.begin(), spans.end(),
                   [](const auto& left, const auto& right) { return left.from < right.from; });
  Ribbon ribbon;
  for (const recordings::LabelSpan& span : spans)
    ribbon.add(span.from, span.to, span.label);
  Json json = ribbon.json(coder, "");
  json["tier"] = tier;
  return json;
}

/// A line through the ends of the pieces; where they do not meet, a NaN interrupts it.
Json valueLine(const Course& course, const std::string& quantity, const std::string& coder)
{
  std::vector<double> times;
  std::vector<float> values;
  const auto add = [&](double time, double value) {
    times.push_back(time);
    values.push_back(static_cast<float>(value));
  };
  const CoursePiece* before = nullptr;
  for (const CoursePiece& piece : course)
  {
    if (piece.what < 0)
      continue;
    const bool goesOn = before != nullptr && before->to == piece.from && before->valueTo == piece.valueFrom;
    if (!goesOn && before != nullptr)
      add(before->to, notANumber);
    if (!goesOn)
      add(piece.from, piece.valueFrom);
    add(piece.to, piece.valueTo);
    before = &piece;
  }
  return {{"coder", coder}, {"quantity", quantity}, {"time", base64(times)}, {"value", base64(values)}};
}

struct OfPerson
{
  Json ribbons = Json::array();
  Json lines = Json::array();
};

}  // namespace

Json reportLabels(const std::vector<recordings::Labels>& labels, const std::set<std::int32_t>& persons,
                  const AgreementOptions& options)
{
  const CodedLabels coded = codedLabels(labels, persons, options);
  std::map<std::int32_t, OfPerson> found;
  for (const auto& [quantity, coders] : coded.classes)
    for (const auto& [coder, courses] : coders)
      for (const auto& [person, course] : courses)
        found[person].ribbons.push_back(stateRibbon(course, labelQuantities().at(quantity), coder));
  for (const auto& [person, tiers] : coded.others)
    for (const auto& [key, spans] : tiers)
      found[person].ribbons.push_back(otherRibbon(spans, key.first, key.second));
  for (const auto& [quantity, coders] : coded.values)
    for (const auto& [coder, courses] : coders)
      for (const auto& [person, course] : courses)
        found[person].lines.push_back(valueLine(course, quantity, coder));

  Json ofPersons = Json::array();
  for (auto& [person, one] : found)
    ofPersons.push_back({{"person", person}, {"ribbons", std::move(one.ribbons)}, {"lines", std::move(one.lines)}});
  return {{"warnings", coded.warnings}, {"persons", std::move(ofPersons)}};
}

}  // namespace KV::session
