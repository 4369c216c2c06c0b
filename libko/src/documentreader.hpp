#pragma once

#include <ko/value.hpp>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ko
{

/// Builds a value from the contents that a parser of the library finds, within the limits of ko::wirelimits.
///
/// Uses the types that json::decode() and cbor::decode() list. The operations that return a bool are called by the
/// parsers of the library, so they have the library's names; false stops the parser.
class DocumentReader
{
public:
  using Number = nlohmann::json;

  bool null();
  bool boolean(bool value);
  bool number_integer(Number::number_integer_t value);
  bool number_unsigned(Number::number_unsigned_t value);
  bool number_float(Number::number_float_t value, const Number::string_t& digits);
  bool string(Number::string_t& text);
  bool binary(Number::binary_t& bytes);
  bool start_object(std::size_t size);
  bool key(Number::string_t& name);
  bool end_object();
  bool start_array(std::size_t size);
  bool end_array();
  bool parse_error(std::size_t position, const std::string& token, const Number::exception& error);

  /// Returns the document, once the parser has returned true.
  const Value& document() const { return _document; }

  /// Returns where the parser stopped, as TypeError::path() does.
  std::string path() const;

  /// Returns the reason why the parser or this reader stopped.
  const std::string& error() const { return _error; }

  /// Whether the parser stopped because the document ended too early.
  bool isCutOff() const { return _isCutOff; }

private:
  using List = std::vector<Value>;
  using Map = std::map<std::string, Value>;

  /// A list or map whose end the parser has not seen.
  struct Container
  {
    Value value;
    std::optional<std::string> key;  ///< of the element that comes next, in a map after its key
  };

  bool _add(Value leaf);
  template <typename T>
  bool _open();
  bool _close();
  bool _count();
  void _place(Value value);
  bool _refuse(const std::string& error);

  std::vector<Container> _containers;  // from the outermost to the innermost
  Value _document;
  std::size_t _values = 0;  // seen so far
  std::string _error;
  bool _isCutOff = false;
};

}  // namespace ko
