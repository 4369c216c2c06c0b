#include <ko/type.hpp>

#include <algorithm>
#include <array>

namespace ko::detail
{

namespace
{

bool isBlank(char c)
{
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isWordCharacter(char c)
{
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// Keywords that may come before the name of a class.
bool isKeyword(std::string_view word)
{
  static constexpr std::array<std::string_view, 3> keywords = {"class", "struct", "enum"};
  return std::find(keywords.begin(), keywords.end(), word) != keywords.end();
}

/// Namespaces inside standard libraries that users never write.
bool isInlineNamespace(std::string_view word)
{
  return word == "__cxx11" || word == "__1";
}

/// Cuts the next token, a word or a single other character, off the front of `rest`, which starts with no blank.
std::string_view takeToken(std::string_view& rest)
{
  std::size_t length = 0;
  while (length < rest.size() && isWordCharacter(rest[length]))
    ++length;
  const std::string_view token = rest.substr(0, std::max<std::size_t>(length, 1));
  rest.remove_prefix(token.size());
  return token;
}

void skipBlanks(std::string_view& rest)
{
  while (!rest.empty() && isBlank(rest.front()))
    rest.remove_prefix(1);
}

}  // namespace

std::string normalizeClassName(std::string_view name)
{
  std::string normalized;
  for (skipBlanks(name); !name.empty(); skipBlanks(name))
  {
    const std::string_view token = takeToken(name);
    if (isKeyword(token))
      continue;
    if (isInlineNamespace(token) && name.substr(0, 2) == "::")
    {
      name.remove_prefix(2);
      continue;
    }
    if (!normalized.empty() && isWordCharacter(normalized.back()) && isWordCharacter(token.front()))
      normalized += ' ';
    normalized += token;
  }
  return normalized;
}

}  // namespace ko::detail
