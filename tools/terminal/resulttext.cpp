#include "terminal/resulttext.hpp"

#include "terminal/personheading.hpp"
#include "terminal/shown.hpp"

#include <skeigiot/session/names.hpp>
#include <skeigiot/session/wording.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace KV::tools
{

namespace
{

constexpr std::size_t mostSentences = 3;  // persons with a sentence each

const char* const unknown = "unknown";

/// Returns the number with its sign, but without the blank that replaces a missing sign in a column.
std::string signedText(double value)
{
  const std::string text = session::signedNumber(value);
  return text.substr(text.find_first_not_of(' '));
}

/// Returns the verdict on the person, "unknown" without one.
std::string verdictOn(std::int32_t person, const session::Summary& summary, const std::string& scope)
{
  const auto& verdicts = summary.verdicts();
  const auto found = std::find_if(verdicts.begin(), verdicts.end(),
                                  [&scope](const session::ScopeVerdict& verdict) { return verdict.name == scope; });
  return found == verdicts.end() ? unknown : found->of(person).word;
}

/// "How person 1 felt", "Person 1 was positive on the whole (valence +0.55)". A name comes before the number.
std::string sentenceOn(std::int32_t person, const session::PersonSummary& ofPerson, const std::string& verdict)
{
  const std::string name = ofPerson.name();
  const std::string who = shown(session::personText(person, name));
  const std::string looked =
      "looked at the robot " + session::percentage(ofPerson.lookingAtRobotShare()) + " of the time";
  const bool knowsValence = verdict != unknown && ofPerson.isValenceKnown();
  if (!knowsValence && !ofPerson.isAttentionKnown())
    return "How " + who + " felt, and where they looked, is unknown.";
  if (!knowsValence)
    return "How " + who + " felt is unknown; they " + looked + ".";
  const std::string felt = personHeading(person, name) + " was " + verdict + " on the whole (valence " +
                           signedText(ofPerson.valence()) + ")";
  return felt + (ofPerson.isAttentionKnown() ? " and " + looked + "." : "; where they looked is unknown.");
}

/// "3 positive, 1 neutral, 2 unknown".
std::string countedVerdicts(const session::Summary& summary, const std::string& scope)
{
  std::array<std::pair<const char*, std::size_t>, 4> counts{
      {{"positive", 0}, {"neutral", 0}, {"negative", 0}, {unknown, 0}}};
  for (const auto& [person, ofPerson] : summary.persons())
  {
    const std::string verdict = ofPerson.isValenceKnown() ? verdictOn(person, summary, scope) : unknown;
    for (auto& [word, count] : counts)
      count += verdict == word ? 1 : 0;
  }
  std::string text;
  for (const auto& [word, count] : counts)
  {
    if (count > 0)
      text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + word;
  }
  return text;
}

std::string sentenceOnMany(const session::Summary& summary, const std::string& scope)
{
  std::size_t known = 0;
  double looked = 0.;
  for (const auto& [person, ofPerson] : summary.persons())
  {
    if (!ofPerson.isAttentionKnown())
      continue;
    ++known;
    looked += ofPerson.lookingAtRobotShare();
  }
  const std::string felt =
      std::to_string(summary.persons().size()) + " persons, on the whole: " + countedVerdicts(summary, scope);
  if (known == 0)
    return felt + "; where they looked is unknown.";
  return felt + "; " + (known == summary.persons().size() ? "they" : "those of whom it is known") +
         " looked at the robot " + session::percentage(looked / static_cast<double>(known)) +
         " of the time on average.";
}

}  // namespace

std::string resultText(const session::Summary& summary, const std::string& scope)
{
  const auto& persons = summary.persons();
  if (persons.empty())
    return "Nobody was seen in this recording.";
  if (persons.size() > mostSentences)
    return sentenceOnMany(summary, scope);
  std::string text;
  for (const auto& [person, ofPerson] : persons)
    text += (text.empty() ? "" : " ") + sentenceOn(person, ofPerson, verdictOn(person, summary, scope));
  return text;
}

std::string readingText(const std::vector<std::string>& description)
{
  std::string text;
  const auto add = [&text](const std::string& line, const char* ends) {
    text += (text.empty() ? "" : ", ") + line.substr(0, line.find_first_of(ends));
  };
  if (!description.empty())
    add(description[0], ":;");
  if (description.size() == 2)  // of one input: its channels, and its times
    add(description[1], ",;");
  return "Read as: " + text + "; 'skeigiot inspect' says more.";
}

}  // namespace KV::tools
