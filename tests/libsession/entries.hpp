#pragma once

#include "support/clocktest.hpp"

#include <skeigiot/recordings/recording.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <cmath>
#include <cstdint>

/// \file
/// Recordings and snapshots for tests, made by hand. All times are in seconds since the start of the recording.

namespace replaytests
{

using namespace support;

inline KV::session::Duration inNanoseconds(double sinceStart)
{
  return KV::session::Duration(std::llround(sinceStart * 1e9));
}

inline KV::recordings::Step entryAt(double sinceStart)
{
  KV::recordings::Step entry;
  entry.time = start + inNanoseconds(sinceStart);
  return entry;
}

/// A person who faces the robot and smiles with this strength; 0 is a calm face.
inline KV::recordings::Step seenAt(double sinceStart, std::int32_t person, float smile = 1.f)
{
  KV::recordings::Step entry = entryAt(sinceStart);
  entry.person = person;
  KV::Expressions expressions;
  expressions.joy = {smile, 1.f};
  expressions.calm = {1.f - smile, 1.f};
  entry.observation.headPosture.emplace(entry.time, KV::HeadPosture(0.f, 0.f, 0.f));
  entry.observation.gaze.emplace(entry.time, KV::Gaze(0.f, 0.f));
  entry.observation.smile.emplace(entry.time, KV::Smile(smile, 1.f));
  entry.observation.expressions.emplace(entry.time, expressions);
  return entry;
}

inline KV::recordings::Step notSeenAt(double sinceStart, std::int32_t person)
{
  KV::recordings::Step entry = entryAt(sinceStart);
  entry.person = person;
  entry.seen = false;
  return entry;
}

/// A snapshot of person 0, seen, with this valence and attention, both of full confidence.
inline KV::session::Snapshot snapshotAt(double sinceStart, float valence = 0.f, float attention = 0.f)
{
  KV::session::Snapshot snapshot;
  snapshot.time = start + inNanoseconds(sinceStart);
  snapshot.sinceStart = inNanoseconds(sinceStart);
  snapshot.valence = {valence, 1.f};
  snapshot.attention = {attention, 1.f};
  snapshot.pleasure = KV::PleasureNeutral;
  return snapshot;
}

/// Of person 0, who looks down and feels bad, and pays no attention.
inline KV::session::Snapshot lookingDownAt(double sinceStart)
{
  KV::session::Snapshot snapshot = snapshotAt(sinceStart, -1.f, 0.f);
  snapshot.zone = ko::human::AttentionState::LookingDown;
  snapshot.pleasure = KV::PleasureNegative;
  return snapshot;
}

/// Of person 0, who looks up and feels good, and pays full attention.
inline KV::session::Snapshot lookingUpAt(double sinceStart)
{
  KV::session::Snapshot snapshot = snapshotAt(sinceStart, 1.f, 1.f);
  snapshot.zone = ko::human::AttentionState::LookingUp;
  snapshot.pleasure = KV::PleasurePositive;
  return snapshot;
}

}  // namespace replaytests
