#pragma once

#include <skeigiot/recordings/face.hpp>
#include <skeigiot/recordings/implausible.hpp>

#include <boost/optional/optional.hpp>

#include <string>
#include <vector>

namespace KV::recordings
{

/// Looks for scores of faces that are percent, where shares or intensities are expected.
///
/// Action units and blendshapes are warned of once: some programs scale them so, and they count as full. With a
/// confidence in percent every face would pass, so it is refused; so are emotions in percent.
class FaceScoreCheck
{
public:
  /// Checks a tracked face; returns the score that is to be refused.
  boost::optional<Implausible> look(const Face& face);

  /// Returns the warnings that came up since the last call.
  std::vector<std::string> takeWarnings();

private:
  void _warnOnce(const std::string& name, float value, const char* scale);

  std::vector<std::string> _warnings;
  bool _warned = false;
};

}  // namespace KV::recordings
