#pragma once

#include "diagnostictext.hpp"
#include "forcetext.hpp"

#include <skeigiot/forceobserver.hpp>

#include <boost/container/small_vector.hpp>
#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace KV
{

/// A quantity that a force pulls; `clamp` keeps it in its range.
template <float (*clamp)(float)>
struct Pulled
{
  Quantity quantity;
  float& value;

  void move(float target, float weight) const { value = clamp(value + weight * (target - value)); }
};

/// A force of a source that has many.
struct Pull
{
  float target;
  float weight;
};

using Pulls = boost::container::small_vector<Pull, 16>;

/// The texts of the weights of some consecutive forces, all written before the first is needed.
class WrittenWeights
{
public:
  static constexpr std::size_t most = 32;

  void write(const Pull* forces, std::size_t count)
  {
    std::size_t written = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
      const float weight = forces[i].weight;
      if (written == 0 || !_written[written - 1].isOf(weight))
        _written[written++].write(weight);
      _weights[i] = &_written[written - 1];
    }
  }

  const WrittenWeight& operator[](std::size_t i) const { return *_weights[i]; }

private:
  std::array<WrittenWeight, most> _written;
  std::array<const WrittenWeight*, most> _weights{};
};

/// Applies the forces one after the other: composes the text of each, and moves the quantities under their mutex.
///
/// The weights of some forces are written ahead: a number takes a while to write, but the processor writes several at
/// once as long as no mutex is taken between them.
///
/// Inlined always: the name of the quantity and the source are constants at each call.
///
/// \pre Nobody observes the forces.
template <typename... Quantities>
__attribute__((always_inline)) inline void applyForces(std::string_view words, const Pulls& forces,
                                                       std::string_view source, boost::mutex& mutex,
                                                       Quantities... pulled)
{
  WrittenWeights weights;
  const Pull* const end = forces.data() + forces.size();
  for (const Pull* first = forces.data(); first != end;)
  {
    const std::size_t count = std::min(WrittenWeights::most, static_cast<std::size_t>(end - first));
    weights.write(first, count);
    for (std::size_t i = 0; i < count; ++i)
    {
      const Pull& force = first[i];
      DiagnosticText text;
      describeForce(text, words, force.target, source, [&](char* place) { return weights[i].copyTo(place); });
      const boost::lock_guard<boost::mutex> lock(mutex);
      (pulled.move(force.target, force.weight), ...);
    }
    first += count;
  }
}

}  // namespace KV
