#include "terminal/foldertable.hpp"

#include "terminal/texttable.hpp"

#include <skeigiot/session/wording.hpp>

#include <cmath>

namespace KV::tools
{

namespace
{

template <typename Text>
std::string ifKnown(double number, const Text& text)
{
  return std::isnan(number) ? "unknown" : text(number);
}

/// "positive", or "2 positive, 1 unknown" of several persons.
std::string verdictText(const FileOverview& file)
{
  std::string text;
  for (const auto& [word, count] : file.verdicts)
    text += (text.empty() ? "" : ", ") + (file.persons > 1 ? std::to_string(count) + " " : std::string()) + word;
  return text;
}

std::string noteOn(const FileOverview& file)
{
  if (!file.opened)
    return "not read: see the message";
  std::string note = file.warnings > 0 ? session::counted(file.warnings, "warning") : "";
  if (file.cut)
    note += (note.empty() ? "" : ", ") + std::string("not read to its end");
  return note;
}

TextTable::Cells rowOf(const FileOverview& file)
{
  if (!file.opened)
    return {file.file, "", "", "", "", "", "", noteOn(file)};
  if (file.persons == 0)
    return {file.file, session::clockText(file.length), "0", "", "", "", "", noteOn(file)};
  return {file.file,
          session::clockText(file.length),
          std::to_string(file.persons),
          session::percentage(file.seen),
          ifKnown(file.valence, session::signedNumber),
          ifKnown(file.attention, session::plainNumber),
          verdictText(file),
          noteOn(file)};
}

}  // namespace

std::string folderTable(const std::vector<FileOverview>& files, const Style& style)
{
  TextTable table({{session::counted(files.size(), "recording")},
                   {"length", true},
                   {"persons", true},
                   {"seen", true},
                   {"valence", true},
                   {"attention", true},
                   {"verdict"},
                   {""}});
  for (const FileOverview& file : files)
    table.add(rowOf(file));
  return table.text(style);
}

}  // namespace KV::tools
