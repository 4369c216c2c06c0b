#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/lookat.hpp>
#include <skeigiot/recordings/rest.hpp>

#include <boost/optional/optional.hpp>

#include <string>

namespace KV::recordings
{

/// How a recording is to be read, where the file leaves it open.
struct SKEIGIOT_API ReadingOptions
{
  boost::optional<double> framesPerSecond;  ///< instead of the file's own time stamps
  bool mirrored = false;                    ///< the video is a mirror image: left and right are exchanged
  bool lineOfSight = true;              ///< angles relative to the line from face to camera, where a position is known
  boost::optional<float> cameraHeight;  ///< [m] above the floor; without it head heights are unknown
  float minimalConfidence = 0.7f;       ///< below this a face counts as not tracked
  float actionUnitFullScale = 3.f;      ///< action-unit intensity that counts as 1, where units go from 0 to 5
  LookAt lookAt;                        ///< where the robot is; the format's own: lineOfSight decides
  Rest rest;                            ///< what is taken off a face as its rest
  std::string mapping;                  ///< file that says how scores become readings; empty is the built-in tables
  std::string personColumn;             ///< column of a CSV file that names the person; empty is the format's own

  std::string rateName;     ///< how users set framesPerSecond, such as "fps=": messages that advise it add the name
  std::string mappingName;  ///< the same for mapping
};

}  // namespace KV::recordings
