#include "documentreader.hpp"

#include "jsontree.hpp"
#include "place.hpp"

#include <ko/utf8.hpp>
#include <ko/wirelimits.hpp>

#include <limits>
#include <utility>

namespace ko
{

namespace
{

constexpr std::size_t longestError = 200;

template <typename T>
T& contentsOf(Value& value)
{
  return *static_cast<T*>(value.storage());
}

template <typename T>
bool holds(const Value& value)
{
  return value.type() == typeOf<T>();
}

}  // namespace

bool DocumentReader::null()
{
  return _add(Value());
}

bool DocumentReader::boolean(bool value)
{
  return _add(Value::from(value));
}

bool DocumentReader::number_integer(Number::number_integer_t value)
{
  return _add(Value::from(value));
}

bool DocumentReader::number_unsigned(Number::number_unsigned_t value)
{
  if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return _add(Value::from(value));
  return _add(Value::from(static_cast<std::int64_t>(value)));
}

bool DocumentReader::number_float(Number::number_float_t value, const Number::string_t&)
{
  return _add(Value::from(value));
}

bool DocumentReader::string(Number::string_t& text)
{
  return isUtf8(text) ? _add(Value::from(text)) : _refuse("the text is not UTF-8");
}

bool DocumentReader::binary(Number::binary_t&)
{
  return _refuse("a byte string is no value of any type");
}

bool DocumentReader::start_object(std::size_t)
{
  return _open<Map>();
}

bool DocumentReader::key(Number::string_t& name)
{
  if (!isUtf8(name))
    return _refuse("a key is not UTF-8");
  if (contentsOf<Map>(_containers.back().value).count(name) != 0)
    return _refuse("the key \"" + shortened(name, longestError) + "\" is there twice");
  _containers.back().key = std::move(name);
  return true;
}

bool DocumentReader::end_object()
{
  return _close();
}

bool DocumentReader::start_array(std::size_t)
{
  return _open<List>();
}

bool DocumentReader::end_array()
{
  return _close();
}

bool DocumentReader::parse_error(std::size_t, const std::string&, const Number::exception& error)
{
  constexpr int unexpectedEnd = 110;
  _isCutOff = error.id == unexpectedEnd;
  // The text begins with the library's own name for the exception, in brackets.
  const std::string_view text = error.what();
  constexpr std::string_view nameEnd = "] ";
  return _refuse(shortened(text.substr(text.find(nameEnd) + nameEnd.size()), longestError));
}

std::string DocumentReader::path() const
{
  std::string path;
  for (const Container& container : _containers)
  {
    if (container.key)
      appendMember(path, *container.key);
    else if (holds<List>(container.value))
      appendElement(path, static_cast<const List*>(container.value.storage())->size());
  }
  return path;
}

bool DocumentReader::_add(Value leaf)
{
  if (!_count())
    return false;
  _place(std::move(leaf));
  return true;
}

template <typename T>
bool DocumentReader::_open()
{
  if (_containers.size() == wirelimits::depth)
    return _refuse("nested deeper than " + std::to_string(wirelimits::depth) + " levels");
  if (!_count())
    return false;
  _containers.push_back({Value::ofType(typeOf<T>()), {}});
  return true;
}

bool DocumentReader::_close()
{
  Value value = std::move(_containers.back().value);
  _containers.pop_back();
  _place(std::move(value));
  return true;
}

bool DocumentReader::_count()
{
  if (++_values > wirelimits::values)
    return _refuse("more than " + std::to_string(wirelimits::values) + " values in a document");
  return true;
}

void DocumentReader::_place(Value value)
{
  if (_containers.empty())
  {
    _document = std::move(value);
    return;
  }
  Container& container = _containers.back();
  if (container.key)
  {
    contentsOf<Map>(container.value).emplace(std::move(*container.key), std::move(value));
    container.key.reset();
  }
  else
    contentsOf<List>(container.value).push_back(std::move(value));
}

bool DocumentReader::_refuse(const std::string& error)
{
  _error = error;
  return false;
}

}  // namespace ko
