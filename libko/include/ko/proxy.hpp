#pragma once

#include <ko/api.hpp>

#include <vector>

/// The proxies of the middleware: its client interfaces to the services of a robot, by family.
///
/// A library includes the families that its users need, so that they come with the library even where no code names
/// them. The embedded middleware has no bus: to include a family here makes it known, and connects to nothing.
namespace ko::proxy
{

/// Services whose client interfaces belong together.
enum class Family
{
  FrameTypes,      ///< coordinate frames and transforms of the robot
  HumanService,    ///< persons as the robot perceives them
  EmotionService,  ///< moods and emotions
};

/// Includes the proxies of a family; a second time changes nothing.
///
/// May be called at any time, static initialisation included.
///
/// \par Thread safety
///   Safe from any thread.
KO_API void include(Family family);

/// Returns the included families, in the order of their inclusion.
///
/// \par Thread safety
///   Safe from any thread.
KO_API std::vector<Family> included();

}  // namespace ko::proxy
