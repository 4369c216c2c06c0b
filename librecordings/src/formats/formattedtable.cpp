#include "formats/tabletext.hpp"
#include "tidy/tidyreadings.hpp"
#include "tidy/tidytable.hpp"

#include <skeigiot/recordings/inputfile.hpp>
#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/recordings/table.hpp>

#include <algorithm>
#include <istream>
#include <utility>

namespace KV::recordings
{
namespace
{
// Errors name rows of the table, counted from 0, instead of lines of the text.
Error::Place placeInTable(const Error& error, const std::string& name)
{
  const Error::Place& place = error.place();
  if (place.file != name || place.line == 0)
    return place;
  const bool isHeader = place.line == 1;
  return {isHeader ? name : name + ", row " + std::to_string(place.line - 2), 0, place.field};
}

// The error's text after its place.
std::string messageOf(const Error& error)
{
  const std::string place = Error(error.place(), "").what();
  return std::string(error.what()).substr(place.size());
}

template <typename Function>
auto withPlacesIn(const std::string& name, Function function)
{
  try
  {
    return function();
  }
  catch (const BadLine& error)
  {
    throw BadLine(placeInTable(error, name), messageOf(error));
  }
  catch (const Error& error)
  {
    throw Error(placeInTable(error, name), messageOf(error));
  }
}

/// A table that is read as if it was a file of its format.
class FormattedTable : public Reader
{
public:
  FormattedTable(const Table& table, const Format& format, const ReadingOptions& options)
    : _name(table.name),
      _text(table),
      _stream(&_text),
      _reader(withPlacesIn(_name, [&] { return format.read(InputFile(_stream, _name), options); }))
  {}

  boost::optional<Step> next() override
  {
    return withPlacesIn(_name, [this] { return _reader->next(); });
  }

  std::vector<std::string> describe() const override { return _reader->describe(); }
  std::vector<std::string> describeLearned() const override { return _reader->describeLearned(); }
  std::vector<std::string> takeWarnings() override { return _reader->takeWarnings(); }
  bool isDated() const override { return _reader->isDated(); }
  Columns columns() const override { return _reader->columns(); }
  double progress() const override { return _text.progress(); }

private:
  std::string _name;
  TableText _text;
  std::istream _stream;
  std::unique_ptr<Reader> _reader;
};

bool hasColumn(const Table& table, const char* name)
{
  return std::any_of(table.columns.begin(), table.columns.end(),
                     [name](const TableColumn& column) { return column.name == name; });
}

// Whether the table has times, and readings under our own names.
bool isOfReadings(const Table& table)
{
  const bool hasTimes = table.moments != nullptr || hasColumn(table, nameOf(TidyColumn::Time));
  if (!hasTimes || hasColumn(table, nameOf(TidyColumn::Reading)))
    return hasTimes;
  const std::vector<std::string> known = tableColumns();
  return std::any_of(table.columns.begin(), table.columns.end(), [&known](const TableColumn& column) {
    return std::find(known.begin(), known.end(), column.name) != known.end();
  });
}

const Format* formatNamed(const std::string& name)
{
  const auto& formats = recordingFormats();
  const auto found =
      std::find_if(formats.begin(), formats.end(), [&name](const Format& format) { return format.name == name; });
  return found == formats.end() ? nullptr : &*found;
}

const Format* formatDetected(const Table& table)
{
  const std::string head = TableText::header(table);
  const auto& formats = recordingFormats();
  const auto found =
      std::find_if(formats.begin(), formats.end(), [&head](const Format& format) { return format.detect(head); });
  return found == formats.end() ? nullptr : &*found;
}

}  // namespace

std::unique_ptr<Reader> openTable(const Table& table, const std::string& format, const ReadingOptions& options)
{
  if (table.rows == 0)
    throw Error({table.name, 0, {}}, "there is no row");
  if (isOfReadings(table) || format == "tidy")
    return openTable(table);
  const Format* const found = format.empty() ? formatDetected(table) : formatNamed(format);
  if (found == nullptr)
    return openTable(table);  // with the missing column in its message
  if (!found->isTable)
    throw Error({table.name, 0, {}}, "a table cannot be of the format " + found->name + ", " + found->description);
  return std::make_unique<FormattedTable>(table, *found, options);
}

std::vector<std::string> tableColumns()
{
  std::vector<std::string> names;
  for (const std::string& reading : tidyReadingNames())
  {
    const TidyReading known = tidyReadingNamed(reading).value();
    std::vector<TidyColumn> columns = known.needed;
    columns.insert(columns.end(), known.optional.begin(), known.optional.end());
    columns.push_back(TidyColumn::Confidence);
    for (const TidyColumn column : columns)
      names.push_back(column == TidyColumn::Value ? reading : reading + "." + nameOf(column));
  }
  return names;
}

}  // namespace KV::recordings
