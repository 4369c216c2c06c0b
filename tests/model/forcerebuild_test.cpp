// An observer of all forces can rebuild the estimate from them, to the last bit.

#include "model/randomobservations.hpp"
#include "model/translation.hpp"

#include "personstateprivate.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/person.hpp>

#include <ko/log.hpp>
#include <ko/systemclock.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace
{

using model::Nanoseconds;

constexpr std::uint64_t seed = 77;
constexpr Nanoseconds start = 1700000000000 * model::millisecond;
constexpr int observations = 5000;

/// The six quantities by number, and the zone.
struct Estimate
{
  explicit Estimate(const KV::PersonStatePrivate& state)
    : quantities{state.valence.value,      state.unsmoothedValence.value,
                 state.valence.confidence, state.unsmoothedValence.confidence,
                 state.attention.value,    state.attention.confidence},
      zone(state.attentionZone)
  {}

  void apply(const KV::Force& force)
  {
    float& value = quantities.at(static_cast<std::size_t>(force.quantity));
    EXPECT_TRUE(isSame(value, force.before));
    const float lowest = force.quantity <= KV::UnsmoothedValenceQuantity ? -1.f : 0.f;
    const float moved = value + force.weight * (force.target - value);
    value = moved < lowest ? lowest : moved > 1.f ? 1.f : moved;
    EXPECT_TRUE(isSame(value, force.after));
  }

  void apply(const KV::ZoneChange& change)
  {
    EXPECT_EQ(zone, change.from);
    zone = change.to;
  }

  static bool isSame(float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; }

  std::array<float, 6> quantities;
  ko::human::AttentionState zone;
};

TEST(ForcesOfAnUpdate, RebuildTheEstimateFromTheOneBefore)
{
  const ko::log::HandlerId silence = ko::log::addHandler([](const ko::log::Record&) {});
  model::RandomObservations life(seed);
  ko::ManualClock clock(model::toTimePoint(start));
  const ko::ScopedClockSource scope(clock);
  KV::Person person;

  int forces = 0;
  int zoneChanges = 0;
  Nanoseconds now = start;
  for (int i = 0; i < observations && !HasFailure(); ++i)
  {
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", observation " << i);
    now += life.step();
    clock.set(model::toTimePoint(now));
    Estimate rebuilt(*person.personState._p);
    {
      const KV::ScopedForceObserver observer(
          [&](const KV::Force& force) {
            rebuilt.apply(force);
            ++forces;
          },
          [&](const KV::ZoneChange& change) {
            rebuilt.apply(change);
            ++zoneChanges;
          });
      if (i % 7 == 0)
        person.decreaseSinceNotSeen();
      else
        person.update(model::toLibrary(life.next(now)));
    }
    const Estimate actual(*person.personState._p);
    for (std::size_t quantity = 0; quantity < actual.quantities.size(); ++quantity)
      EXPECT_TRUE(Estimate::isSame(actual.quantities.at(quantity), rebuilt.quantities.at(quantity))) << quantity;
    EXPECT_EQ(actual.zone, rebuilt.zone);
  }
  ko::log::removeHandler(silence);
  EXPECT_GT(forces, 10 * observations);
  EXPECT_GT(zoneChanges, observations / 50);
}

}  // namespace
