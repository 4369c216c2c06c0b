#pragma once

#include <skeigiot/recordings/restingface.hpp>

#include <ko/systemclock.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace KV::recordings
{

/// The persons' faces at rest in a recording. Of more than mostPersons, the person seen longest ago is forgotten.
class RestingFaces
{
public:
  static constexpr std::size_t mostPersons = 1000;

  /// Returns the face of a person who is seen at that time; time spans count from the first time of all persons.
  RestingFace& of(std::int32_t person, ko::SystemClock::time_point now);

  /// Describes the learned faces, a line for each of the first persons.
  std::vector<std::string> describe() const;

private:
  struct Entry
  {
    RestingFace face;
    ko::SystemClock::time_point seen;
  };

  void _forgetOldest();

  boost::optional<ko::SystemClock::time_point> _start;
  std::map<std::int32_t, Entry> _faces;
};

}  // namespace KV::recordings
