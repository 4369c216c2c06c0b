#pragma once

#include "report/reportinputs.hpp"

#include <skeigiot/forceobserver.hpp>
#include <skeigiot/session/snapshot.hpp>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace KV::session
{

/// A force; its source is an index in a table of names.
struct MomentForce
{
  std::uint16_t source = 0;
  KV::Quantity quantity = KV::ValenceQuantity;
  float target = 0.f;
  float weight = 0.f;
  float before = 0.f;
  float after = 0.f;
};

/// How far one source moved one quantity, in total.
struct MomentChange
{
  std::uint16_t source = 0;
  KV::Quantity quantity = KV::ValenceQuantity;
  double distance = 0.;
};

/// One update of a person: the observation, the estimate after it, and the reasons.
struct Moment
{
  Snapshot snapshot;
  ReportInputValues inputs{};
  std::vector<MomentForce> forces;  ///< in their order

  std::vector<MomentChange> changes;  ///< of valence and attention, since the moment before
  std::size_t updates = 1;            ///< since the moment before, including this one
};

}  // namespace KV::session
