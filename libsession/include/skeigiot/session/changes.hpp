#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/forceobserver.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace KV::session
{

/// How far one source moved one quantity, in total.
struct SKEIGIOT_API SourceChange
{
  std::string source;                           ///< name of the source, as KV::Force has it
  KV::Quantity quantity = KV::ValenceQuantity;  ///< what it moved
  std::size_t forces = 0;                       ///< how many forces there were
  double up = 0.;                               ///< sum of the moves upwards, at least 0, in units of the quantity
  double down = 0.;                             ///< sum of the moves downwards, at least 0
  float leastTarget = 0.f;                      ///< the least target of a force
  float greatestTarget = 0.f;                   ///< the greatest target of a force

  /// Returns how far the source moved the quantity, whatever the direction.
  double distance() const { return up + down; }
  /// Returns by how much the source moved the quantity; below 0 is down.
  double net() const { return up - down; }
};

/// How far each source moved each quantity, over any number of forces.
class SKEIGIOT_API Changes
{
public:
  /// Adds one force that acted.
  void add(const KV::Force& force) { add(force.source, force.quantity, force.target, force.before, force.after); }
  /// Adds a move of the quantity from `before` to `after`, towards `target`.
  void add(std::string_view source, KV::Quantity quantity, float target, float before, float after);
  /// Adds all that the others hold; sources that are new come last.
  void add(const Changes& others);

  /// Forgets all.
  void clear() { _changes.clear(); }

  /// Returns those of one quantity, the greatest distance first; equal ones in the order in which they came up.
  std::vector<SourceChange> of(KV::Quantity quantity) const;

private:
  SourceChange& _change(std::string_view source, KV::Quantity quantity, float target);

  std::vector<SourceChange> _changes;  // a dozen or two: searching them takes less than a map
};

/// Returns the sum of the distances.
SKEIGIOT_API double totalDistance(const std::vector<SourceChange>& changes);

/// Returns the shares of the distances in their sum, in tenths of a percent that add up to 1000, or all 0 if nothing
/// moved.
SKEIGIOT_API std::vector<int> sharesInTenthsOfPercent(const std::vector<SourceChange>& changes);

}  // namespace KV::session
