#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <optional>
#include <utility>
#include <variant>

namespace KV::recordings
{

/// Rows of a file, of which the first can be examined before they are returned.
template <typename Row>
class LookAhead
{
public:
  /// Reads a row, or nothing at the end; may throw as next() does.
  using Read = std::function<std::optional<Row>()>;

  explicit LookAhead(Read read) : _read(std::move(read)) {}

  /// Reads up to this many rows ahead; an error takes the place of a row that cannot be read.
  void fetch(std::size_t count)
  {
    while (!_ended && _ahead.size() < count)
    {
      try
      {
        if (auto row = _readNext())
          _ahead.emplace_back(std::move(*row));
      }
      catch (const Error&)
      {
        _ahead.emplace_back(std::current_exception());
      }
    }
  }

  /// Returns whether the queue of rows and errors that were read ahead is empty.
  bool empty() const { return _ahead.empty(); }

  /// Returns how many rows, or errors in their place, were read ahead.
  std::size_t size() const { return _ahead.size(); }

  /// Calls `look` with each row that was read ahead.
  template <typename Look>
  void forEach(Look look) const
  {
    for (const auto& element : _ahead)
      if (const auto* const row = std::get_if<Row>(&element))
        look(*row);
  }

  /// Returns the next row, or nothing at the end.
  ///
  /// \throws BadLine for a row that cannot be used; the next call goes on after it.
  /// \throws Error where the rest of the file cannot be read; there is no row after it.
  std::optional<Row> next()
  {
    if (_ahead.empty())
      return _readNext();
    auto first = std::move(_ahead.front());
    _ahead.pop_front();
    if (const auto* const error = std::get_if<std::exception_ptr>(&first))
      std::rethrow_exception(*error);
    return std::get<Row>(std::move(first));
  }

private:
  std::optional<Row> _readNext()
  {
    if (_ended)
      return {};
    try
    {
      auto row = _read();
      _ended = !row;
      return row;
    }
    catch (const BadLine&)
    {
      throw;
    }
    catch (const Error&)
    {
      _ended = true;
      throw;
    }
  }

  Read _read;
  std::deque<std::variant<Row, std::exception_ptr>> _ahead;
  bool _ended = false;
};

}  // namespace KV::recordings
