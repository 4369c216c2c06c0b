#include "openfacecolumns.hpp"

#include "recording.hpp"

#include <algorithm>
#include <cctype>
#include <map>
#include <numeric>

namespace tools
{
namespace
{
const std::vector<std::string> positionNames = {"pose_Tx", "pose_Ty", "pose_Tz"};
const std::vector<std::string> rotationNames = {"pose_Rx", "pose_Ry", "pose_Rz"};
const std::vector<std::string> gazeAngleNames = {"gaze_angle_x", "gaze_angle_y"};
const std::vector<std::string> gazeVectorNames = {"gaze_0_x", "gaze_0_y", "gaze_0_z",
                                                  "gaze_1_x", "gaze_1_y", "gaze_1_z"};

// A header that has so many of the names below comes from OpenFace.
constexpr std::ptrdiff_t tellingNames = 2;

bool isOneOf(const std::vector<std::string>& names, const std::string& name)
{
  return std::find(names.begin(), names.end(), name) != names.end();
}

// AU06_r or AU06_c, as only OpenFace writes it.
bool isActionUnit(const std::string& name)
{
  const auto isDigit = [](char character) { return std::isdigit(static_cast<unsigned char>(character)) != 0; };
  return name.size() == 6 && name.compare(0, 2, "AU") == 0 && isDigit(name[2]) && isDigit(name[3]) && name[4] == '_' &&
         (name[5] == 'r' || name[5] == 'c');
}

bool isOfOpenFace(const std::string& name)
{
  static const std::vector<std::string> others = {"frame", "face_id", "timestamp", "confidence", "success"};
  return isOneOf(others, name) || isOneOf(positionNames, name) || isOneOf(rotationNames, name) ||
         isOneOf(gazeAngleNames, name) || isOneOf(gazeVectorNames, name) || isActionUnit(name);
}

std::string_view trimmed(std::string_view text)
{
  constexpr std::string_view around = " \t\r\"";
  const std::size_t begin = text.find_first_not_of(around);
  if (begin == std::string_view::npos)
    return {};
  return text.substr(begin, text.find_last_not_of(around) + 1 - begin);
}

// How many names of OpenFace there are between these delimiters.
std::ptrdiff_t namesOfOpenFace(std::string_view header, std::string_view delimiters)
{
  std::ptrdiff_t count = 0;
  while (true)
  {
    const std::size_t end = header.find_first_of(delimiters);
    count += isOfOpenFace(std::string(trimmed(header.substr(0, end)))) ? 1 : 0;
    if (end == std::string_view::npos)
      return count;
    header.remove_prefix(end + 1);
  }
}

std::string actionUnitName(int unit)
{
  return std::string(unit < 10 ? "AU0" : "AU") + std::to_string(unit) + "_r";
}

std::vector<std::string> landmarkNames()
{
  std::vector<std::string> names;
  for (const char* const axis : {"x_", "y_"})
    for (const int landmark : facialPointLandmarks)
      names.push_back(axis + std::to_string(landmark));
  return names;
}

std::string list(const std::vector<std::string>& names)
{
  return std::accumulate(std::next(names.begin()), names.end(), names.front(),
                         [](std::string text, const std::string& name) { return std::move(text) + ", " + name; });
}

// The header as an index of its names.
class Header
{
public:
  Header(const std::vector<std::string_view>& fields, const RecordingError::Place& place)
  {
    for (std::size_t i = 0; i < fields.size(); ++i)
    {
      const std::string name(trimmed(fields[i]));
      if (!_indices.emplace(name, i).second && isOfOpenFace(name))
        throw RecordingError({place.file, place.line, name}, "this column is there twice");
    }
  }

  bool has(const std::string& name) const { return _indices.count(name) > 0; }

  std::optional<std::size_t> find(const std::string& name) const
  {
    const auto found = _indices.find(name);
    return found == _indices.end() ? std::nullopt : std::make_optional(found->second);
  }

  template <std::size_t Count>
  OpenFaceColumns::Group<Count> find(const std::vector<std::string>& names, OpenFaceColumns::Group<Count>) const
  {
    std::array<std::size_t, Count> indices{};
    for (std::size_t i = 0; i < Count; ++i)
    {
      const auto index = find(names.at(i));
      if (!index)
        return {};
      indices.at(i) = *index;
    }
    return indices;
  }

private:
  std::map<std::string, std::size_t> _indices;
};

void refuseOtherDelimiters(const std::vector<std::string_view>& header, const RecordingError::Place& place)
{
  if (header.size() != 1)
    return;
  const struct
  {
    const char* delimiter;
    const char* name;
  } others[] = {{";", "semicolons"}, {"\t", "tabs"}, {"|", "bars"}};
  for (const auto& other : others)
    if (namesOfOpenFace(header.front(), other.delimiter) >= tellingNames)
      throw RecordingError(place, std::string("the columns are separated by ") + other.name +
                                      "; expected commas, and numbers with a decimal point");
}

// OpenFace 3 counts its action units through and calls them AU01_r to AU08_r: AU02_r is action unit 6 there.
void refuseOpenFace3(const Header& header, const RecordingError::Place& place)
{
  if (header.has("AU03_r"))
    throw RecordingError(
        {place.file, place.line, "AU03_r"},
        "OpenFace 2 has no such action unit: this is the layout of OpenFace 3, whose columns AU01_r to "
        "AU08_r hold other action units than their names say; expected a file of OpenFace 2");
}

void refuseWhatTellsNothing(const OpenFaceColumns& columns, const RecordingError::Place& place)
{
  if (!columns.frame && !columns.timestamp)
    throw RecordingError(place, "there is no column frame and none timestamp; expected one of them at least");
  if (!columns.rotation && !columns.hasGaze() && !columns.hasActionUnits())
    throw RecordingError(place, "there is nothing to read; expected head pose (" + list(rotationNames) + "), gaze (" +
                                    list(gazeAngleNames) + "; or " + list(gazeVectorNames) +
                                    ") or action units (such as AU06_r, AU12_r)");
}

}  // namespace

bool OpenFaceColumns::hasActionUnits() const
{
  return std::any_of(actionUnits.begin(), actionUnits.end(), [](const auto& column) { return column.has_value(); });
}

bool looksLikeOpenFace(const std::string& head)
{
  const std::size_t begin = std::min(head.find_first_not_of("\r\n"), head.size());
  const auto header = std::string_view(head).substr(begin, head.find('\n', begin) - begin);
  return namesOfOpenFace(header, ",;\t|") >= tellingNames;
}

OpenFaceColumns findOpenFaceColumns(const std::vector<std::string_view>& header, const std::string& file,
                                    std::size_t line)
{
  const RecordingError::Place place{file, line, {}};
  refuseOtherDelimiters(header, place);
  const Header index(header, place);
  refuseOpenFace3(index, place);

  OpenFaceColumns columns;
  columns.names.assign(header.begin(), header.end());
  columns.frame = index.find("frame");
  columns.timestamp = index.find("timestamp");
  columns.faceId = index.find("face_id");
  columns.confidence = index.find("confidence");
  columns.success = index.find("success");
  columns.position = index.find(positionNames, columns.position);
  columns.rotation = index.find(rotationNames, columns.rotation);
  columns.gazeAngle = index.find(gazeAngleNames, columns.gazeAngle);
  columns.gazeVectors = index.find(gazeVectorNames, columns.gazeVectors);
  columns.landmarks = index.find(landmarkNames(), columns.landmarks);
  for (std::size_t i = 0; i < usedActionUnits.size(); ++i)
    columns.actionUnits.at(i) = index.find(actionUnitName(usedActionUnits.at(i)));

  refuseWhatTellsNothing(columns, place);
  return columns;
}

}  // namespace tools
