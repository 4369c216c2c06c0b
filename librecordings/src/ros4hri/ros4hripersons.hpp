#pragma once

#include <skeigiot/recordings/inputlimits.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace KV::recordings
{

/// Numbers the persons of a bag: first those that have a name, in the order of their first messages, then faces that
/// belong to nobody, in the order in which they appear.
class RosbagPersons
{
public:
  /// There is no bag with more faces than that.
  static constexpr std::size_t mostFaces = limits::mostFaces;

  /// Notes that a face is that of a person; what is said last counts.
  void addFace(const std::string& person, const std::string& face);

  /// As above, for a voice.
  void addVoice(const std::string& person, const std::string& voice);

  /// Returns the number of the person with this face; nothing if there are too many faces.
  std::optional<std::int32_t> ofFace(const std::string& face);

  /// Returns the number of the person with this voice; nothing if it belongs to nobody.
  std::optional<std::int32_t> ofVoice(const std::string& voice) const;

  /// Returns what the bag calls the person with this number: the id of the person, or of the face that belongs to
  /// nobody. In UTF-8.
  std::string nameOf(std::int32_t person) const;

  /// Says who has which number.
  std::string describe() const;

private:
  std::int32_t _numberOf(const std::string& person);

  std::vector<std::string> _names;  // of persons, by number
  std::vector<std::string> _all;    // of persons and of faces without one, by number
  std::map<std::string, std::int32_t> _numbers;
  std::map<std::string, std::int32_t> _faces;
  std::map<std::string, std::int32_t> _voices;
  std::int32_t _next = 0;
};

}  // namespace KV::recordings
