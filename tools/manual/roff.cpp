#include "manual/roff.hpp"

#include <cstddef>
#include <sstream>
#include <utility>

namespace KV::tools
{

namespace
{

bool isVerbatim(const std::string& line)
{
  return !line.empty() && line.front() == ' ';
}

/// Takes the consecutive lines of one kind (verbatim or not), and sets `line` to the one after them.
std::string takeAlike(std::istream& lines, std::string& line)
{
  const bool verbatim = isVerbatim(line);
  std::string taken;
  do
  {
    taken += line + "\n";
    if (!std::getline(lines, line))
    {
      line.clear();
      break;
    }
  } while (!line.empty() && isVerbatim(line) == verbatim);
  return taken;
}

}  // namespace

std::string roffText(const std::string& text)
{
  std::string roff;
  bool atStart = true;
  for (const char c : text)
  {
    if (atStart && (c == '.' || c == '\''))
      roff += "\\&";
    if (c == '\\')
      roff += "\\e";
    else if (c == '-')
      roff += "\\-";
    else
      roff += c;
    atStart = c == '\n';
  }
  return roff;
}

std::string roffFilled(const std::string& text)
{
  constexpr std::size_t longest = 80;
  std::istringstream words(text);
  std::string lines;
  std::string line;
  for (std::string word; words >> word;)
  {
    std::string longer = line;
    longer += line.empty() ? "" : " ";
    longer += word;
    if (line.empty() || roffText(longer).size() <= longest)
    {
      line = std::move(longer);
      continue;
    }
    lines += roffText(line) + "\n";
    line = word;
  }
  return line.empty() ? lines : lines + roffText(line) + "\n";
}

std::string roffBold(const std::string& text)
{
  return "\\fB" + roffText(text) + "\\fR";
}

std::string roffItalic(const std::string& text)
{
  return "\\fI" + roffText(text) + "\\fR";
}

std::string roffVerbatim(const std::string& lines)
{
  return ".EX\n" + roffText(lines) + ".EE\n";
}

std::string roffParagraphs(const std::string& text)
{
  std::string roff;
  std::istringstream lines(text);
  std::string line;
  bool isFirst = true;
  while (!line.empty() || std::getline(lines, line))
  {
    if (line.empty())
    {
      if (!isFirst)
        roff += ".PP\n";
      continue;
    }
    const bool verbatim = isVerbatim(line);
    const std::string taken = takeAlike(lines, line);
    roff += verbatim ? roffVerbatim(taken) : roffFilled(taken);
    isFirst = false;
    if (line.empty() && lines)
      roff += ".PP\n";
  }
  return roff;
}

}  // namespace KV::tools
