#include "csv/csvpersons.hpp"

#include <limits>

namespace KV::recordings
{

CsvPersons::CsvPersons(const CsvHeader& header, const std::string& chosenColumn, const std::string& ownColumn)
  : _isChosen(!chosenColumn.empty()), _name(_isChosen ? chosenColumn : ownColumn)
{
  if (!_name.empty())
    _column = header.find(_name);
  if (_isChosen && !_column)
    throw Error({header.place().file, header.place().line, chosenColumn},
                "there is no such column to take persons from");
}

std::int32_t CsvPersons::personOf(const CsvNumbers& numbers, const Error::Place& row)
{
  if (!_column)
    return 0;
  if (_isChosen)
    return _names.numberOf(numbers.text(*_column), {row.file, row.line, _name});
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(numbers.wholeNumber(*_column, Limits::min(), Limits::max()));
}

std::string CsvPersons::description() const
{
  if (!_column)
    return "all rows are person 0" + (_name.empty() ? std::string() : ", since there is no " + _name);
  return "persons by " + _name;
}

}  // namespace KV::recordings
