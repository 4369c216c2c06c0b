#include "openface/openfacecolumns.hpp"

#include "face/actionunits.hpp"

#include <skeigiot/recordings/description.hpp>
#include <skeigiot/recordings/recording.hpp>

#include <algorithm>

namespace KV::recordings
{
namespace
{
const std::vector<std::string> positionNames = {"pose_Tx", "pose_Ty", "pose_Tz"};
const std::vector<std::string> rotationNames = {"pose_Rx", "pose_Ry", "pose_Rz"};
const std::vector<std::string> gazeAngleNames = {"gaze_angle_x", "gaze_angle_y"};
const std::vector<std::string> gazeVectorNames = {"gaze_0_x", "gaze_0_y", "gaze_0_z",
                                                  "gaze_1_x", "gaze_1_y", "gaze_1_z"};

// A header with so many of the names below comes from OpenFace.
constexpr std::ptrdiff_t tellingNames = 2;

bool isOneOf(const std::vector<std::string>& names, const std::string& name)
{
  return std::find(names.begin(), names.end(), name) != names.end();
}

// AU06_r or AU06_c: only OpenFace writes such names.
bool isActionUnit(const std::string& name)
{
  return name.size() == 6 && isActionUnitName(name.substr(0, 4)) && name[4] == '_' &&
         (name[5] == 'r' || name[5] == 'c');
}

// OpenFace 3 numbers its action units from 1 and calls them AU01_r to AU08_r: AU02_r is action unit 6 there.
void refuseOpenFace3(const CsvHeader& header)
{
  if (header.has("AU03_r"))
    throw Error({header.place().file, header.place().line, "AU03_r"},
                "OpenFace 2 has no such action unit: this is the layout of OpenFace 3, whose columns AU01_r to "
                "AU08_r hold other action units than their names say; expected a file of OpenFace 2");
}

void refuseWithoutNeededColumns(const OpenFaceColumns& columns, const Error::Place& place)
{
  if (!columns.frame && !columns.timestamp)
    throw Error(place, "there is no column frame and no column timestamp; expected at least one of them");
  if (!columns.rotation && !columns.hasGaze() && !columns.hasActionUnits())
    throw Error(place, "there is nothing to read; expected head pose (" + listed(rotationNames) + "), gaze (" +
                           listed(gazeAngleNames) + "; or " + listed(gazeVectorNames) +
                           ") or action units (such as AU06_r, AU12_r)");
}

}  // namespace

bool OpenFaceColumns::hasActionUnits() const
{
  return std::any_of(actionUnits.begin(), actionUnits.end(), [](const auto& column) { return column.has_value(); });
}

bool isOfOpenFace(const std::string& name)
{
  static const std::vector<std::string> others = {"frame", "face_id", "timestamp", "confidence", "success"};
  return isOneOf(others, name) || isOneOf(positionNames, name) || isOneOf(rotationNames, name) ||
         isOneOf(gazeAngleNames, name) || isOneOf(gazeVectorNames, name) || isActionUnit(name);
}

bool looksLikeOpenFace(const std::string& head)
{
  const auto names = namesIn(headerLineOf(head), ",;\t|");
  return std::count_if(names.begin(), names.end(), isOfOpenFace) >= tellingNames;
}

OpenFaceColumns findOpenFaceColumns(const CsvHeader& header, const std::vector<std::string>& actionUnits)
{
  refuseOpenFace3(header);

  OpenFaceColumns columns;
  columns.frame = header.find("frame");
  columns.timestamp = header.find("timestamp");
  columns.confidence = header.find("confidence");
  columns.success = header.find("success");
  columns.position = header.findAll<3>(positionNames);
  columns.rotation = header.findAll<3>(rotationNames);
  columns.gazeAngle = header.findAll<2>(gazeAngleNames);
  columns.gazeVectors = header.findAll<6>(gazeVectorNames);
  columns.landmarks = findLandmarks(header);
  for (const std::string& unit : actionUnits)
    columns.actionUnits.push_back(header.find(unit + "_r"));

  refuseWithoutNeededColumns(columns, header.place());
  return columns;
}

}  // namespace KV::recordings
