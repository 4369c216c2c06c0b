#include "cli/labelarguments.hpp"

#include "cli/argumentparsing.hpp"

#include <skeigiot/session/labelscopes.hpp>

namespace KV::tools
{

namespace
{

constexpr double greatestTime = 4e9;  // [s]

}  // namespace

const char* const labelGroup = "What labels mean";

void addLabelOptions(CLI::App& command, session::AgreementOptions& agreement)
{
  addTexts(command, "--label", "Assigns a state to a label. May be given several times", "LABEL=STATE",
           [&agreement](const std::string& text) { agreement.mapping.add(text); })
      ->group(labelGroup);
  addTexts(command, "--unlabelled",
           "State of time without a label. May be given once for each of pleasure,\n"
           "engagement and zones",
           "STATE", [&agreement](const std::string& text) { agreement.mapping.setUnlabelled(text); })
      ->group(labelGroup);
  addChoice<std::string>(command, "--value",
                         "Quantity of values and of labels that are numbers, if the column does\nnot name it",
                         "QUANTITY", {{"valence", "valence"}, {"attention", "attention"}}, agreement.valueQuantity)
      ->group(labelGroup);
  addTexts(command, "--scale",
           "Values of the coder for the ends of the scale: -1 and 1 for valence,\n"
           "0 and 1 for attention",
           "FROM..TO", [&agreement](const std::string& text) { agreement.scale = session::parseLabelScale(text); })
      ->group(labelGroup);
  addTexts(command, "--person",
           "Assigns labels, or a tier, with this NAME to a person; without NAME=,\n"
           "assigns labels without a name. May be given several times",
           "[NAME=]ID", [&agreement](const std::string& text) { session::parseLabelPerson(text, agreement.persons); })
      ->group(labelGroup);
  addTexts(command, "--tier", "Use only labels of this tier (of BORIS: observation). May be given\nseveral times",
           "NAME", [&agreement](const std::string& text) { agreement.tiers.insert(text); })
      ->group(labelGroup);
  addNumber(
      command, "--labels-offset", "Seconds to add to all times of labels", "SECONDS", "seconds",
      [](double seconds) { return seconds >= -greatestTime && seconds <= greatestTime; },
      [&agreement](double seconds) { agreement.offset = seconds; })
      ->group(labelGroup);
}

void addScopesOptions(CLI::App& command, ScopesArguments& scopes, const std::string& group)
{
  addTexts(command, "--scopes",
           "Give a verdict on each label of this file, too: of ELAN, BORIS, Praat,\n"
           "Audacity, BIDS or CSV; with TIER, only on labels of that tier or\n"
           "person. May be given several times",
           "FILE[:TIER]", [&scopes](const std::string& text) { scopes.files.push_back(text); })
      ->group(group);
  addNumber(
      command, "--scopes-offset", "Seconds to add to all times of --scopes", "SECONDS", "seconds",
      [](double seconds) { return seconds >= -greatestTime && seconds <= greatestTime; },
      [&scopes](double seconds) { scopes.offset = seconds; })
      ->group(group);
}

void readScopes(const ScopesArguments& arguments, Messages& messages, std::vector<session::ScopeSpan>& scopes,
                std::vector<std::string>& paths)
{
  for (const std::string& file : arguments.files)
  {
    const session::LabelScopes from = session::parseLabelScopes(file);
    const recordings::Labels labels = recordings::readLabels(from.path);
    std::vector<std::string> warnings = labels.warnings;
    const std::vector<session::ScopeSpan> made = session::scopesOf(labels, from, arguments.offset, warnings);
    scopes.insert(scopes.end(), made.begin(), made.end());
    paths.push_back(from.path);
    for (const std::string& warning : warnings)
      messages.note(std::string("warning: ").append(from.path).append(": ").append(warning));
  }
}

std::vector<recordings::Labels> readLabelFiles(const std::vector<std::string>& paths, Messages& messages)
{
  std::vector<recordings::Labels> all;
  for (const std::string& path : paths)
  {
    all.push_back(recordings::readLabels(path));
    for (const std::string& warning : all.back().warnings)
      messages.note(std::string("warning: ").append(path).append(": ").append(warning));
  }
  return all;
}

}  // namespace KV::tools
