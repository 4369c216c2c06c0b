#pragma once

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace binding
{

/// A table that grows row by row, without the interpreter lock, and becomes NumPy arrays.
class Columns
{
public:
  /// The fields of a row must then come in the same order each time.
  void beginRow() { _next = 0; }

  void operator()(const char* name, bool value) { _of<std::uint8_t>(name).push_back(value ? 1 : 0); }
  void operator()(const char* name, std::int32_t value) { _of<std::int32_t>(name).push_back(value); }
  void operator()(const char* name, std::int64_t value) { _of<std::int64_t>(name).push_back(value); }
  void operator()(const char* name, float value) { _of<float>(name).push_back(value); }
  void operator()(const char* name, ko::SystemClock::duration value) { (*this)(name, value.count()); }
  /// A missing time is the least number, which NumPy reads as "not a time".
  void operator()(const char* name, const boost::optional<ko::SystemClock::duration>& value)
  {
    (*this)(name, value ? value->count() : std::numeric_limits<std::int64_t>::min());
  }
  void operator()(const char* name, std::string_view value);

  /// Returns a dict with an array for each column, and leaves the table empty. A column of texts is a pair: codes, and
  /// the list of texts for the codes. To be called with the interpreter lock held.
  pybind11::dict take();

private:
  template <typename T>
  using Values = std::vector<T>;

  /// For few different texts.
  struct Texts
  {
    std::vector<std::int32_t> codes;
    std::vector<std::string> texts;
  };

  struct Column
  {
    const char* name;
    std::variant<Values<std::uint8_t>, Values<std::int32_t>, Values<std::int64_t>, Values<float>, Texts> values;
  };

  template <typename Stored>
  Stored& _storedAs(const char* name)
  {
    if (_next == _columns.size())
      _columns.push_back({name, Stored()});
    return std::get<Stored>(_columns[_next++].values);
  }

  template <typename T>
  Values<T>& _of(const char* name)
  {
    return _storedAs<Values<T>>(name);
  }

  std::vector<Column> _columns;
  std::size_t _next = 0;
};

}  // namespace binding
