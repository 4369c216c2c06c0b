#pragma once

#include <skeigiot/api.hpp>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace KV::recordings
{

/// Returns the names of the blendshapes of a face, as MediaPipe and ARKit both have them, in alphabetical order;
/// without `_neutral` and `tongueOut`, which only one of them has.
SKEIGIOT_API const std::vector<std::string>& blendshapeNames();

/// The blendshapes of a face.
class SKEIGIOT_API Blendshapes
{
public:
  static constexpr std::size_t count = 51;  ///< as many as blendshapeNames()

  /// Makes a face of which no blendshape is known.
  Blendshapes();

  /// Sets the score of the blendshape with this name: 0 is relaxed, 1 is the greatest; what is beyond counts as the
  /// nearest of both, NaN as unknown. Returns false, and changes nothing, if it is not in blendshapeNames().
  bool set(std::string_view name, float score);

  /// As above, for blendshapeNames()[index].
  ///
  /// \throws std::out_of_range if there is no such name.
  void set(std::size_t index, float score) { _scores.at(index) = score; }

  /// Returns the score of blendshapeNames()[index] as it was set; NaN is unknown.
  ///
  /// \throws std::out_of_range if there is no such name.
  float at(std::size_t index) const { return _scores.at(index); }

  /// Returns whether no score is known.
  bool areUnknown() const;

private:
  std::array<float, count> _scores;
};

}  // namespace KV::recordings
