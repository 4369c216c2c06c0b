#pragma once

#include "tools/commands/rebuiltestimate.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/explainer.hpp>
#include <skeigiot/session/session.hpp>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace explaintests
{

/// The result of rebuilding one person's estimates.
struct Rebuilt
{
  std::size_t updates = 0;
  std::size_t forces = 0;
  std::string firstDifference;
};

/// Plays the recording, and rebuilds all estimates of a person from their forces; also returns all other persons.
inline std::pair<Rebuilt, std::map<std::int32_t, KV::session::Explainer::Updates>> rebuild(const std::string& path,
                                                                                           std::int32_t person)
{
  Rebuilt rebuilt;
  RebuiltEstimate estimate;
  KV::session::Explainer explainer(person, [&](const KV::session::Explanation& explanation) {
    ++rebuilt.updates;
    rebuilt.forces += explanation.forces.size();
    const std::string difference = estimate.apply(explanation);
    if (rebuilt.firstDifference.empty() && !difference.empty())
      rebuilt.firstDifference = std::to_string(rebuilt.updates) + ": " + difference;
  });
  const std::unique_ptr<KV::recordings::Reader> reader = KV::recordings::openRecording(path, "", {});
  KV::session::Session session({}, {&explainer}, KV::session::Cycle::recorded());
  while (const auto entry = reader->next())
    session.play(*entry);
  return {rebuilt, explainer.persons()};
}

}  // namespace explaintests
