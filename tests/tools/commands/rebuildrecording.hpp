#pragma once

#include "explainer.hpp"
#include "rebuiltestimate.hpp"

#include "recording.hpp"
#include "session.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace explaintests
{

/// What became of rebuilding one person's estimates.
struct Rebuilt
{
  std::size_t updates = 0;
  std::size_t forces = 0;
  std::string firstDifference;
};

/// Plays the recording, and rebuilds all estimates of a person from their forces; also returns who else is there.
inline std::pair<Rebuilt, std::map<std::int32_t, tools::Explainer::Updates>> rebuild(const std::string& path,
                                                                                     std::int32_t person)
{
  Rebuilt rebuilt;
  RebuiltEstimate estimate;
  tools::Explainer explainer(person, [&](const tools::Explanation& explanation) {
    ++rebuilt.updates;
    rebuilt.forces += explanation.forces.size();
    const std::string difference = estimate.apply(explanation);
    if (rebuilt.firstDifference.empty() && !difference.empty())
      rebuilt.firstDifference = std::to_string(rebuilt.updates) + ": " + difference;
  });
  const std::unique_ptr<tools::RecordingReader> reader = tools::openRecording(path, "", {});
  tools::Session session({}, {&explainer}, tools::Forces::Watched);
  while (const auto entry = reader->next())
    session.play(*entry);
  return {rebuilt, explainer.persons()};
}

}  // namespace explaintests
