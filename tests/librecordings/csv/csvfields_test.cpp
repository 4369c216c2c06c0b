#include "csv/csvfields.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using KV::recordings::LineScan;
using Fields = std::vector<std::string>;

/// The fields, found by a simple program without blocks.
Fields plainFields(const std::string& line)
{
  Fields fields(1);
  for (const char character : line)
  {
    if (character == ',')
      fields.emplace_back();
    else
      fields.back() += character;
  }
  for (std::string& field : fields)
  {
    const std::size_t begin = field.find_first_not_of(" \t");
    field = begin == std::string::npos ? "" : field.substr(begin, field.find_last_not_of(" \t") + 1 - begin);
  }
  return fields;
}

/// The line in memory of its own size, so that the address sanitizer detects a character that is read beyond it.
class ExactLine
{
public:
  explicit ExactLine(const std::string& line) : _characters(new char[line.size()]), _size(line.size())
  {
    std::copy(line.begin(), line.end(), _characters.get());
  }

  std::string_view view() const { return {_characters.get(), _size}; }

private:
  std::unique_ptr<char[]> _characters;  // NOLINT(modernize-avoid-c-arrays): of variable size
  std::size_t _size;
};

template <typename Split>
Fields fieldsOf(std::string_view line, std::size_t count, Split split)
{
  std::vector<std::string_view> fields(count, "not written");
  split(line, fields.data());
  return {fields.begin(), fields.end()};
}

void expectBothWaysToFindTheFields(const std::string& text)
{
  const ExactLine line(text);
  const auto commas = static_cast<std::size_t>(std::count(text.begin(), text.end(), ','));
  const bool hasQuote = text.find('"') != std::string::npos;

  for (const LineScan& scan : {KV::recordings::scanLine(line.view()), KV::recordings::scanLineByCharacter(line.view())})
  {
    ASSERT_EQ(hasQuote, scan.hasQuote) << text;
    if (!hasQuote)
    {
      ASSERT_EQ(commas, scan.commas) << text;
    }
  }
  const Fields expected = plainFields(text);
  ASSERT_EQ(expected, fieldsOf(line.view(), commas + 1, KV::recordings::splitAtCommas)) << text;
  ASSERT_EQ(expected, fieldsOf(line.view(), commas + 1, KV::recordings::splitAtCommasByCharacter)) << text;
}

TEST(CsvFields, AreFoundWithTheCommaAtEachPlaceOfABlock)
{
  for (std::size_t length = 0; length <= 70; ++length)
  {
    expectBothWaysToFindTheFields(std::string(length, 'x'));
    expectBothWaysToFindTheFields(std::string(length, ','));
    for (std::size_t place = 0; place < length; ++place)
      for (const char* piece : {",", " , ", "\t,", "\"", ",,"})
        expectBothWaysToFindTheFields(std::string(length, 'x').replace(place, 1, piece));
  }
}

TEST(CsvFields, AreCountedThoughThereAreMoreThanAByteCanCount)
{
  for (const std::size_t count : {255U, 256U, 4079U, 4080U, 4081U, 8160U, 10000U})
  {
    expectBothWaysToFindTheFields(std::string(count, ','));
    expectBothWaysToFindTheFields(std::string(count, ',') + '"');
  }
}

TEST(CsvFields, AreThoseOfAPlainProgramInRandomLines)
{
  constexpr unsigned seed = 538;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::string often = ",, \t\"0123456789.-";
  for (int i = 0; i < 20000; ++i)
  {
    std::string line(random() % 100, ' ');
    const std::size_t kinds = 2 + random() % (often.size() - 1);
    for (char& character : line)
      character = random() % 20 == 0 ? static_cast<char>(random() % 256) : often[random() % kinds];
    if (random() % 2 == 0)
      std::replace(line.begin(), line.end(), '"', 'q');
    expectBothWaysToFindTheFields(line);
  }
}

}  // namespace
