#pragma once

#include "tidy/tidytable.hpp"
#include "xdf/xdffile.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The samples of a recording of the Lab Streaming Layer by their times, taken apart into readings; and its markers,
/// each of which is a scope until the next of its stream.
class XdfTable : public TidyTable
{
public:
  /// The file must outlive the table.
  explicit XdfTable(const XdfFile& file);

  /// Returns whether there is neither a sample with a reading nor a marker. Call it before next().
  bool isEmpty();

  /// Returns how many samples are left out, since they are not later than the one before of their stream.
  std::size_t repeated() const { return _repeated; }

  bool next() override;
  bool hasColumn(TidyColumn column) const override { return column == TidyColumn::Person; }
  bool has(TidyColumn column) const override;
  std::string text(TidyColumn column) const override;
  double number(TidyColumn column) const override;
  std::int64_t wholeNumber(TidyColumn column, double least, double greatest) const override;
  double seconds(TidyColumn column) const override;
  Error::Place placeOf(TidyColumn column) const override;
  Error::Place place() const override;
  const Columns& columns() const override { return _columns; }
  const char* kind() const override { return "XDF"; }
  double progress() const override;

private:
  /// A number of a sample.
  struct Field
  {
    std::size_t position = 0;  // among the kept channels
    double factor = 1.;
    double offset = 0.;
  };

  struct Reading
  {
    std::string name;
    bool ofPerson = true;
    std::vector<TidyColumn> needed;
    std::array<std::optional<Field>, tidyColumnCount> fields;
  };

  enum class Kind : std::uint8_t
  {
    Sample,
    Start,
    Stop
  };

  struct Row
  {
    double time = 0.;  // [s] on the recorder's clock
    std::uint32_t stream = 0;
    std::uint32_t sample = 0;
    Kind kind = Kind::Sample;
  };

  static std::vector<Reading> _readingsOf(const XdfStream& stream);
  void _addRows(std::size_t index);
  bool _findRow();
  const XdfStream& _stream() const { return _file.streams()[_rows[_at].stream]; }
  const Reading& _reading() const { return _readings[_rows[_at].stream][_readingAt]; }
  const std::optional<Field>& _field(TidyColumn column) const;
  double _valueOf(const Field& field) const;
  bool _isThere(const Reading& reading) const;

  const XdfFile& _file;
  std::vector<std::vector<Reading>> _readings;  // of each stream
  std::vector<Row> _rows;
  std::size_t _at = 0;
  std::size_t _readingAt = 0;  // of a sample
  std::size_t _repeated = 0;
  bool _begun = false;
  bool _saidDamage = false;
  Columns _columns;  // that are read
};

}  // namespace KV::recordings
