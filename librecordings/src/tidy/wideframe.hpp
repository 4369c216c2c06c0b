#pragma once

#include "tidy/frametable.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace KV::recordings
{

/// A frame with a column for each value; its rows are divided into readings.
class WideFrame : public FrameTable
{
public:
  /// \throws Error if the frame has no times, or no readings.
  explicit WideFrame(const Table& frame);

  bool next() override;
  bool hasColumn(TidyColumn column) const override;
  bool has(TidyColumn column) const override;
  std::string text(TidyColumn column) const override;

protected:
  const TableColumn* field(TidyColumn column) const override;
  std::string nameOfField(TidyColumn column) const override;

private:
  /// The columns of a reading.
  struct Reading
  {
    std::string name;
    bool ofPerson = true;
    std::vector<TidyColumn> needed;
    std::array<const TableColumn*, tidyColumnCount> fields{};
  };

  bool _take(const TableColumn& column);
  bool _takeAs(const std::string& reading, TidyColumn field, const TableColumn& column);
  bool _isThere(const Reading& reading) const;
  bool _hasSilentPerson() const { return _person ? isFilled(*_person) && !_anyReadingOfPerson : !_anyReading; }
  bool _saysOnlySeen() const { return _at == _readings.size(); }

  std::vector<Reading> _readings;
  const TableColumn* _time = nullptr;
  const TableColumn* _person = nullptr;
  bool _begun = false;
  std::size_t _at = 0;       // which reading of the row; after the last: that the person was seen
  bool _anyReading = false;  // of this row
  bool _anyReadingOfPerson = false;
};

}  // namespace KV::recordings
