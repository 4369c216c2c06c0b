#include "tidy/tidycsvtable.hpp"

#include "csv/csvheader.hpp"

#include <algorithm>
#include <utility>

namespace KV::recordings
{
namespace
{

bool isTidyColumn(const std::string& name)
{
  return tidyColumnNamed(name).has_value();
}

}  // namespace

bool looksLikeTidyCsv(const std::string& head)
{
  const auto names = namesIn(headerLineOf(head), ",;\t|");
  const auto has = [&names](TidyColumn column) {
    return std::find(names.begin(), names.end(), nameOf(column)) != names.end();
  };
  return has(TidyColumn::Time) && has(TidyColumn::Reading);
}

TidyCsvTable::TidyCsvTable(InputFile input) : _rows(std::move(input)), _numbers(_rows, _names)
{
  if (!_rows.next())
    throw Error({_rows.file().path(), 0, {}}, "the file is empty");
  _findColumns();
}

void TidyCsvTable::_findColumns()
{
  refuseOtherDelimiters(_rows.fields(), place(), isTidyColumn);
  const CsvHeader header(_rows.fields(), place(), isTidyColumn);
  _names = header.names();
  for (std::size_t i = 0; i < tidyColumnCount; ++i)
    _indices.at(i) = header.find(nameOf(static_cast<TidyColumn>(i)));
  _columns = header.columns();
  for (const TidyColumn needed : {TidyColumn::Time, TidyColumn::Reading})
    if (!hasColumn(needed))
      throw Error(place(), std::string("there is no column ") + nameOf(needed));
}

bool TidyCsvTable::next()
{
  if (!_rows.next())
    return false;
  _numbers.refuseOtherFieldCounts();
  return true;
}

bool TidyCsvTable::has(TidyColumn column) const
{
  return hasColumn(column) && !isEmptyField(_numbers.text(*_indexOf(column)));
}

std::string TidyCsvTable::text(TidyColumn column) const
{
  return std::string(_numbers.text(_indexOf(column).value()));
}

double TidyCsvTable::number(TidyColumn column) const
{
  return _numbers.number(_indexOf(column).value());
}

std::int64_t TidyCsvTable::wholeNumber(TidyColumn column, double least, double greatest) const
{
  return _numbers.wholeNumber(_indexOf(column).value(), least, greatest);
}

double TidyCsvTable::seconds(TidyColumn column) const
{
  const auto seconds = _numbers.timestamp(_indexOf(column).value());
  if (!seconds)
    refuseValue(column, "seconds");
  return *seconds;
}

Error::Place TidyCsvTable::placeOf(TidyColumn column) const
{
  return {_rows.file().path(), _rows.file().lineNumber(), nameOf(column)};
}

}  // namespace KV::recordings
