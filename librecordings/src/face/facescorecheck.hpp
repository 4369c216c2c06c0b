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
/// Action units and blendshapes are warned of once: some programs scale them so, and they count as full. A confidence
/// that is percent would let every face pass, so that it is refused; so are emotions.
class FaceScoreCheck
{
public:
  /// Looks at a tracked face; returns what is to be refused.
  boost::optional<Implausible> look(const Face& face);

  /// Returns the warnings that came up since the last call.
  std::vector<std::string> takeWarnings();

private:
  void _warnOnce(const std::string& name, float value, const char* scale);

  std::vector<std::string> _warnings;
  bool _warned = false;
};

}  // namespace KV::recordings
