#pragma once

#include <skeigiot/personobservation.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <tuple>
#include <type_traits>

/// \file
/// The one list of the readings of a PersonObservation, and the parts that each kind of value consists of.
///
/// Files, tables, filters and bindings are made from this list. To add a reading, add its field to PersonObservation
/// and its line to `readings`. If its value is of a new kind, also add a `partsOf` for that kind.

namespace KV
{

/// Unit and range of a number.
struct Scale
{
  const char* unit;  ///< such as "deg"; empty without a unit
  double least;      ///< smallest number that makes sense; readings below it are not refused
  double greatest;   ///< greatest number that makes sense; readings above it are not refused
};

/// The scales of the readings.
namespace scale
{

inline constexpr Scale truth{"", 0., 1.};            ///< false or true
inline constexpr Scale share{"", 0., 1.};            ///< scores, degrees and confidences
inline constexpr Scale sign{"", -1., 1.};            ///< bad to good
inline constexpr Scale degrees{"deg", -180., 180.};  ///< angles
inline constexpr Scale metres{"m", 0., 100.};        ///< distances and heights
inline constexpr Scale seconds{"s", 0., 3600.};      ///< lifetimes
inline constexpr Scale years{"years", 0., 150.};     ///< ages
inline constexpr Scale pixels{"px", 0., 65535.};     ///< positions in an image

}  // namespace scale

/// A part that is a field of the value.
template <typename Value, typename T>
struct FieldPart  // NOLINT(*-member-init): the guides below give it a name
{
  const char* name;                 ///< as files call it
  T Value::*field;                  ///< where it is
  std::optional<Scale> scale = {};  ///< if it is another one than that of the reading

  const T& in(const Value& value) const { return value.*field; }        ///< the part of this value
  void put(const T& part, Value& value) const { value.*field = part; }  ///< changes the part of this value
};

/// The types follow from the field.
template <typename Value, typename T>
FieldPart(const char*, T Value::*) -> FieldPart<Value, T>;
/// The types follow from the field.
template <typename Value, typename T>
FieldPart(const char*, T Value::*, Scale) -> FieldPart<Value, T>;

/// A part that has operations of its own to get and set it.
template <typename Value, typename T>
struct PropertyPart  // NOLINT(*-member-init): the guides below give it a name
{
  const char* name;                 ///< as files call it
  T (Value::*get)() const;          ///< how it is read
  void (Value::*set)(T);            ///< how it is changed
  std::optional<Scale> scale = {};  ///< if it is another one than that of the reading

  /// The part of this value.
  T in(const Value& value) const { return (value.*get)(); }  // GCOV_EXCL_BR_LINE
  /// Changes the part of this value.
  void put(T part, Value& value) const { (value.*set)(part); }  // GCOV_EXCL_BR_LINE
};

/// The types follow from the operations.
template <typename Value, typename T>
PropertyPart(const char*, T (Value::*)() const, void (Value::*)(T)) -> PropertyPart<Value, T>;

/// One of the twelve points of a face.
struct FacialPointPart
{
  const char* name;                 ///< its number
  PointDescription point;           ///< which one it is
  std::optional<Scale> scale = {};  ///< if it is another one than that of the reading

  /// The point of this face.
  FacialPoints::Point in(const FacialPoints& points) const { return points.facialPoint(point); }
  /// Changes the point of this face.
  void put(const FacialPoints::Point& part, FacialPoints& points) const { points.setFacialPoint(point, part); }
};

/// The only part of a value that is a single number or truth: all of it.
template <typename T>
struct WholePart
{
  const char* name = "value";       ///< as files call it
  std::optional<Scale> scale = {};  ///< if it is another one than that of the reading

  const T& in(const T& value) const { return value; }        ///< the value itself
  void put(const T& part, T& value) const { value = part; }  ///< changes the value
};

/// The parts of a kind of value, in the order of files, as a tuple.
///
/// Each part has a name, a scale if it is another one than that of the reading, `in(value)`, which returns the part,
/// and `put(part, value)`, which changes it. A part is a number or a truth; or a score or a point, which has parts
/// itself.
template <typename Value>
inline constexpr auto partsOf = std::make_tuple(WholePart<Value>{});

/// A value and how sure it is.
template <typename T>
inline constexpr auto partsOf<ValueConfidence<T>> =
    std::make_tuple(FieldPart{"value", &ValueConfidence<T>::value},
                    FieldPart{"confidence", &ValueConfidence<T>::confidence, scale::share});

/// The degree of a smile and how sure it is.
template <>
inline constexpr auto partsOf<Smile> = std::make_tuple(FieldPart{"value", &Smile::value},
                                                       FieldPart{"confidence", &Smile::confidence});

/// The angles of a gaze.
template <>
inline constexpr auto partsOf<Gaze> = std::make_tuple(FieldPart{"yaw", &Gaze::yaw}, FieldPart{"pitch", &Gaze::pitch});

/// The angles of the robot's own head.
template <>
inline constexpr auto partsOf<RobotHeadPosture> = std::make_tuple(FieldPart{"yaw", &RobotHeadPosture::yaw},
                                                                  FieldPart{"pitch", &RobotHeadPosture::pitch});

/// The angles of a head.
template <>
inline constexpr auto partsOf<HeadPosture> =
    std::make_tuple(PropertyPart{"yaw", &HeadPosture::yaw, &HeadPosture::setYaw},
                    PropertyPart{"pitch", &HeadPosture::pitch, &HeadPosture::setPitch},
                    PropertyPart{"roll", &HeadPosture::roll, &HeadPosture::setRoll});

/// The emotion that the context imposes, and its duration.
template <>
inline constexpr auto partsOf<ContextEmotion> = std::make_tuple(FieldPart{"valence", &ContextEmotion::valence},
                                                                FieldPart{"lifetime", &ContextEmotion::lifetime,
                                                                          scale::seconds});

/// The scores that a voice has. The surprise of a VoiceEmotion is left out: no voice analyser reports it.
template <>
inline constexpr auto partsOf<VoiceEmotion> = std::make_tuple(FieldPart{"calm", &Expressions::calm},
                                                              FieldPart{"anger", &Expressions::anger},
                                                              FieldPart{"joy", &Expressions::joy},
                                                              FieldPart{"sorrow", &Expressions::sorrow},
                                                              FieldPart{"laughter", &Expressions::laughter},
                                                              FieldPart{"excitement", &Expressions::excitement});

/// The scores that a face has.
template <>
inline constexpr auto partsOf<Expressions> =
    std::tuple_cat(partsOf<VoiceEmotion>, std::make_tuple(FieldPart{"surprise", &Expressions::surprise}));

/// The points of a face; their numbers are their names.
template <>
inline constexpr auto partsOf<FacialPoints> = std::make_tuple(
    FacialPointPart{"0", FacialPoint0}, FacialPointPart{"1", FacialPoint1}, FacialPointPart{"2", FacialPoint2},
    FacialPointPart{"3", FacialPoint3}, FacialPointPart{"4", FacialPoint4}, FacialPointPart{"5", FacialPoint5},
    FacialPointPart{"6", FacialPoint6}, FacialPointPart{"7", FacialPoint7}, FacialPointPart{"8", FacialPoint8},
    FacialPointPart{"9", FacialPoint9}, FacialPointPart{"10", FacialPoint10}, FacialPointPart{"11", FacialPoint11});

/// Calls `visit(part)` for each part of this kind of value, in the order of files.
template <typename Value, typename Visit>
constexpr void forEachPart(Visit&& visit)
{
  std::apply([&visit](const auto&... parts) { (visit(parts), ...); }, partsOf<Value>);
}

/// A reading: the name that files, tables and Python know it by, its field in an observation, and what it says.
template <typename T>
struct NamedReading
{
  using Value = T;  ///< the kind of value

  const char* name;                                         ///< as files call it
  PersonObservation::Reading<T> PersonObservation::*field;  ///< where it is
  Scale scale;                                              ///< of all its numbers, unless a part has another one
  const char* about;                                        ///< what it says, in one line

  /// Returns the reading of this observation, which may be none.
  const PersonObservation::Reading<T>& in(const PersonObservation& observation) const { return observation.*field; }
  /// As above, to be changed.
  PersonObservation::Reading<T>& in(PersonObservation& observation) const { return observation.*field; }
};

/// The kind of value follows from the field.
template <typename T>
NamedReading(const char*, boost::optional<Timestamped<T>> PersonObservation::*, Scale, const char*) -> NamedReading<T>;

/// All readings, in the order of files.
inline constexpr auto readings = std::make_tuple(
    NamedReading{"lookingAtRobot", &PersonObservation::lookingAtRobot, scale::truth,
                 "whether the person looks at the robot"},
    NamedReading{"headHeight", &PersonObservation::headHeight, scale::metres,
                 "above the floor; kept in the state, never remembered"},
    NamedReading{"distance", &PersonObservation::distance, scale::metres, "from the robot"},
    NamedReading{"gaze", &PersonObservation::gaze, scale::degrees, "direction of the gaze"},
    NamedReading{"smile", &PersonObservation::smile, scale::share, "how much the person smiles"},
    NamedReading{"expressions", &PersonObservation::expressions, scale::share, "facial expressions"},
    NamedReading{"headPosture", &PersonObservation::headPosture, scale::degrees, "orientation of the head"},
    NamedReading{"gender", &PersonObservation::gender, scale::truth, "a bool with a confidence"},
    NamedReading{"age", &PersonObservation::age, scale::years, "with a confidence"},
    NamedReading{"faceDetected", &PersonObservation::faceDetected, scale::truth, "whether a face is seen"},
    NamedReading{"facialPoints", &PersonObservation::facialPoints, scale::pixels, "landmarks of the face"},
    NamedReading{"voiceEmotion", &PersonObservation::voiceEmotion, scale::share,
                 "scores of the voice; acts once per time stamp, never remembered"},
    NamedReading{"asrEmotion", &PersonObservation::asrEmotion, scale::sign,
                 "valence of the recognised speech; only its sign counts"},
    NamedReading{"touchEmotion", &PersonObservation::touchEmotion, scale::sign,
                 "above 0 is a pleasant touch, everything else an unpleasant one"},
    NamedReading{"contextEmotion", &PersonObservation::contextEmotion, scale::sign,
                 "an emotion that the context imposes"},
    NamedReading{"speaking", &PersonObservation::speaking, scale::truth, "whether the person speaks"},
    NamedReading{"robotHeadPosture", &PersonObservation::robotHeadPosture, scale::degrees,
                 "orientation of the robot's own head"});

/// How many readings there are.
inline constexpr std::size_t readingCount = std::tuple_size_v<decltype(readings)>;

/// Calls `visit(reading)` with the NamedReading of each, in the order of files.
template <typename Visit>
constexpr void forEachReading(Visit&& visit)
{
  std::apply([&visit](const auto&... all) { (visit(all), ...); }, readings);
}

/// Returns a value whose numbers are all 0.
template <typename Value>
Value blankReading()
{
  if constexpr (std::is_default_constructible_v<Value>)
    return Value();
  else
    return Value(0, 0.f);
}

}  // namespace KV
