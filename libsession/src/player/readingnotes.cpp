#include <skeigiot/session/readingnotes.hpp>

#include <skeigiot/session/wording.hpp>

namespace KV::session
{

std::vector<std::string> ReadingNotes::warningLines() const
{
  std::vector<std::string> lines = warnings;
  if (moreWarnings > 0)
    lines.push_back(counted(moreWarnings, "more warning"));
  return lines;
}

std::string ReadingNotes::skippedText() const
{
  return badLines == 0 ? "" : "skipped " + counted(badLines, "bad line") + ", the first: " + firstBadLine;
}

}  // namespace KV::session
