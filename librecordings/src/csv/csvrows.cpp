#include "csv/csvrows.hpp"

#include <skeigiot/recordings/recording.hpp>

#include <csv.h>

#include <new>

namespace KV::recordings
{
namespace
{
int isBlank(unsigned char character)
{
  return character == ' ' || character == '\t' ? 1 : 0;
}

// Lines were split before, so no character ends a row.
int endsRow(unsigned char)
{
  return 0;
}

std::string_view trimmed(std::string_view field)
{
  while (!field.empty() && isBlank(static_cast<unsigned char>(field.front())) != 0)
    field.remove_prefix(1);
  while (!field.empty() && isBlank(static_cast<unsigned char>(field.back())) != 0)
    field.remove_suffix(1);
  return field;
}

// Splits a line without quotes as libcsv does, only three times as fast or more: what analysers write has thousands of
// columns, and no quotes.
void splitUnquoted(std::string_view line, std::vector<std::string_view>& fields)
{
  fields.clear();
  if (trimmed(line).empty())
    return;
  while (true)
  {
    const std::size_t end = line.find(',');
    fields.push_back(trimmed(line.substr(0, end)));
    if (end == std::string_view::npos)
      return;
    line.remove_prefix(end + 1);
  }
}

}  // namespace

// The parser of libcsv, and the fields of one line one behind the other.
class CsvRows::Parser
{
public:
  Parser() { _init(); }
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;
  ~Parser() { csv_free(&_parser); }

  // Splits the line into `fields`, valid until the next call; false if a quote is out of place or not closed.
  bool split(std::string_view line, std::vector<std::string_view>& fields)
  {
    _text.clear();
    _ends.clear();
    fields.clear();
    const std::size_t parsed = csv_parse(&_parser, line.data(), line.size(), _addField, nullptr, this);
    if (parsed != line.size() || csv_fini(&_parser, _addField, nullptr, this) != 0)
    {
      csv_free(&_parser);
      _init();
      return false;
    }

    std::size_t begin = 0;
    for (const std::size_t end : _ends)
    {
      fields.emplace_back(_text.data() + begin, end - begin);
      begin = end;
    }
    return true;
  }

private:
  void _init()
  {
    if (csv_init(&_parser, CSV_STRICT | CSV_STRICT_FINI) != 0)
      throw std::bad_alloc();
    csv_set_space_func(&_parser, isBlank);
    csv_set_term_func(&_parser, endsRow);
  }

  static void _addField(void* field, std::size_t length, void* self)
  {
    auto& parser = *static_cast<Parser*>(self);
    parser._text.append(static_cast<const char*>(field), length);
    parser._ends.push_back(parser._text.size());
  }

  csv_parser _parser{};
  std::string _text;
  std::vector<std::size_t> _ends;
};

CsvRows::CsvRows(const std::string& path) : _file(path), _parser(std::make_unique<Parser>()) {}

CsvRows::~CsvRows() = default;

bool CsvRows::next()
{
  std::string_view line;
  while (_file.readLine(line))
  {
    if (line.find('"') == std::string_view::npos)
      splitUnquoted(line, _fields);
    else if (!_parser->split(line, _fields))
      throw BadLine({_file.path(), _file.lineNumber(), {}}, "a quote is out of place or not closed");
    if (!_fields.empty())
      return true;
  }
  return false;
}

}  // namespace KV::recordings
