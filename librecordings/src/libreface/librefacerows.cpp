#include "libreface/librefacerows.hpp"

#include "face/actionunits.hpp"

#include <skeigiot/recordings/description.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace KV::recordings
{
namespace
{
const char* const frameName = "frame_idx";
const char* const timeName = "frame_time_in_ms";

/// Returns the column of AU06: LibreFace calls it au_6_intensity.
std::string columnOf(const std::string& actionUnit)
{
  return "au_" + std::to_string(actionUnitNumber(actionUnit)) + "_intensity";
}

// au_6_intensity, as only LibreFace writes it.
bool isIntensity(const std::string& name)
{
  const std::string end = "_intensity";
  return name.rfind("au_", 0) == 0 && name.size() > end.size() + 3 &&
         name.compare(name.size() - end.size(), end.size(), end) == 0;
}

bool isOfLibreFace(const std::string& name)
{
  return name == frameName || name == timeName || isIntensity(name);
}

}  // namespace

bool looksLikeLibreFace(const std::string& head)
{
  const std::vector<std::string> names = namesIn(headerLineOf(head), ",;\t|");
  return std::count_if(names.begin(), names.end(), isIntensity) >= 2;
}

LibreFaceRows::LibreFaceRows(InputFile input, const ReadingOptions& options)
  : CsvFaceRows(std::move(input), isOfLibreFace),
    _options(options),
    _adapter(options),
    _frame(file().header().find(frameName)),
    _time(file().header().find(timeName)),
    _persons(file().header(), options.personColumn, "")
{
  for (const std::string& unit : _adapter.actionUnitNames())
    _actionUnits.push_back(file().header().find(columnOf(unit)));
  if (std::none_of(_actionUnits.begin(), _actionUnits.end(), [](const auto& column) { return column.has_value(); }))
    throw Error(file().header().place(),
                "there is nothing to read; expected intensities of action units (such as au_6_intensity, "
                "au_12_intensity)");
}

std::optional<FaceRow> LibreFaceRows::next()
{
  if (!file().next())
    return {};
  const CsvNumbers numbers = file().numbers();
  numbers.refuseOtherFieldCounts();

  FaceRow row;
  row.line = file().lineNumber();
  if (_frame)
    row.frame.number = numbers.frameNumber(*_frame);
  if (_time)
    row.frame.timestamp = numbers.timestampInMilliseconds(*_time);
  row.detected.actionUnits = readActionUnits(numbers, _actionUnits, _adapter);
  row.tracked = !_adapter.read(row.detected).empty();  // no column says whether there is a face: the readings do
  if (row.tracked)
    row.face = _persons.personOf(numbers, file().place());
  if (!_frame)
    _frames.count(row.frame, _persons.haveColumn());
  return row;
}

FaceRows::Fields LibreFaceRows::fields() const
{
  return {_frame ? frameName : "", _time ? timeName : "", _persons.column()};
}

std::string LibreFaceRows::describeReadings() const
{
  return "LibreFace: action units of " + shortNumber(_options.actionUnitFullScale) +
         ", by their intensities; head angles are not read, since their signs are not documented";
}

std::string LibreFaceRows::describePersons() const
{
  return _persons.description() + ", confidence 1, since there is no such column; " +
         describeMissing({{false, "head pose"},
                          {false, "gaze"},
                          {false, "distance"},
                          {true, "action units"},
                          {false, "landmarks"}});
}

}  // namespace KV::recordings
