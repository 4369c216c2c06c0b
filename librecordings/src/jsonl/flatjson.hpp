#pragma once

#include <skeigiot/recordings/inputlimits.hpp>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace KV::recordings
{

/// FlatJson cannot parse the line: it has an error, or JSON that recordings seldom have.
/// Then parse the line into a tree: the tree's parser has the error messages.
class NotPlain : public std::exception
{};

/// A JSON object in a text, without a tree: its values one after the other, each with its place in the text.
///
/// It accepts the JSON of recordings. Texts with escapes, null, and numbers beyond 64 bits are not plain; nor is an
/// object that is nested deeper or has more parts than any observation. A JSON parser accepts all that it accepts.
class FlatJson
{
public:
  /// Parses the text, which has to outlive the object.
  ///
  /// \throws NotPlain if the text is not one plain JSON value. A name that is twice in an object is no error here; the
  /// reader of the members must check for it.
  explicit FlatJson(std::string_view text);
  FlatJson(const FlatJson&) = delete;  // values refer to it
  FlatJson& operator=(const FlatJson&) = delete;

  class Value;

  /// Returns the outermost value.
  Value document() const;

private:
  enum class Kind : std::uint8_t
  {
    Object,
    Array,
    Text,
    Whole,  // a number without a fraction and an exponent
    Fraction,
    True,
    False
  };

  // A std::string_view without a constructor.
  struct Piece
  {
    const char* begin;
    std::size_t size;

    std::string_view view() const { return {begin, size}; }
  };

  // Has no constructor either: each possible part of a text has one of them, and most are never used.
  struct Part
  {
    Piece name;          // of a member
    Piece text;          // of a text or number
    std::uint32_t size;  // how many members or elements it has
    std::uint32_t end;   // the index after its last part
    Kind kind;
  };
  static_assert(std::is_trivial_v<Part>);

  // In a tree, an object, array, member or element takes up to three parts.
  static constexpr std::size_t mostParts = limits::mostPartsOfStep / 3;
  static constexpr int deepest = 8;
  static_assert(deepest < limits::deepestJson);

  void _skipSpace();
  char _peek() const;
  bool _take(char character);
  void _expect(char character);
  void _takeWord(std::string_view word);
  void _readValue(Piece name, int depth);
  std::uint32_t _readMembers(int depth);
  std::uint32_t _readElements(int depth);
  Piece _readText();
  Piece _readNumber(Kind& kind);
  void _readDigits();

  const char* _next;
  const char* _end;
  std::uint32_t _count = 0;
  std::array<Part, mostParts> _parts;
};

/// One value of a FlatJson, which has to outlive it.
class FlatJson::Value
{
public:
  Value(const FlatJson& json, std::uint32_t index) : _json(&json), _index(index) {}

  bool isObject() const { return _part().kind == Kind::Object; }
  bool isArray() const { return _part().kind == Kind::Array; }

  /// Returns how many members or elements there are.
  std::size_t size() const { return _part().size; }

  std::string_view name() const { return _part().name.view(); }  ///< empty unless it is a member

  /// Returns the first member or element, if size() is not 0.
  Value first() const { return {*_json, _index + 1}; }
  /// Returns the next member or element, if there is one.
  Value next() const { return {*_json, _part().end}; }

  std::optional<bool> asBool() const
  {
    if (_part().kind == Kind::True)
      return true;
    return _part().kind == Kind::False ? std::optional<bool>(false) : std::nullopt;
  }

  std::optional<std::string_view> asText() const
  {
    return _part().kind == Kind::Text ? std::optional<std::string_view>(_part().text.view()) : std::nullopt;
  }

  /// Returns the number, rounded once.
  ///
  /// \throws NotPlain if single precision cannot hold it, or it is a whole number beyond 64 bits.
  std::optional<float> asFloat() const
  {
    if (_part().kind == Kind::Fraction)
      return _number<float>();
    if (_part().kind != Kind::Whole)
      return {};
    // Converted by an integer: -0 is 0 then, as it is for other parsers.
    return *_part().text.begin == '-' ? static_cast<float>(_number<std::int64_t>())
                                      : static_cast<float>(_number<std::uint64_t>());
  }

  /// Returns the whole number if `Integer` holds it.
  ///
  /// \throws NotPlain if 64 bits do not.
  template <typename Integer>
  std::optional<Integer> asWhole() const
  {
    using Limits = std::numeric_limits<Integer>;
    if (_part().kind != Kind::Whole)
      return {};
    if (*_part().text.begin != '-')
    {
      const auto number = _number<std::uint64_t>();
      return number <= static_cast<std::uint64_t>(Limits::max()) ? std::optional<Integer>(static_cast<Integer>(number))
                                                                 : std::nullopt;
    }
    const auto number = _number<std::int64_t>();
    if (!Limits::is_signed || number < static_cast<std::int64_t>(Limits::min()))
      return {};
    return static_cast<Integer>(number);
  }

private:
  const Part& _part() const { return _json->_parts[_index]; }

  template <typename Number>
  Number _number() const
  {
    const Piece text = _part().text;
    Number number{};
    if (std::from_chars(text.begin, text.begin + text.size, number).ec != std::errc())
      throw NotPlain();
    return number;
  }

  const FlatJson* _json;
  std::uint32_t _index;
};

inline FlatJson::Value FlatJson::document() const
{
  return {*this, 0};
}

}  // namespace KV::recordings
