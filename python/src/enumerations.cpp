#include "enumerations.hpp"

#include "module.hpp"

#include <initializer_list>
#include <string>
#include <utility>

namespace py = pybind11;

namespace binding
{

namespace
{

template <typename Enumeration>
void define(py::module_& module, const char* name, const char* doc,
            std::initializer_list<std::pair<const char*, Enumeration>> members)
{
  py::list pairs;
  for (const auto& [member, value] : members)
    pairs.append(py::make_tuple(member, static_cast<std::int32_t>(value)));
  const py::object intEnum = py::module_::import("enum").attr("IntEnum");
  py::object enumeration = intEnum(name, pairs, py::arg("module") = module.attr("__name__"));
  enumeration.attr("__doc__") = doc;
  module.attr(name) = enumeration;
  enumerationClass<Enumeration> = enumeration.release().ptr();
}

void defineVocabulary(py::module_& module)
{
  using ko::human::AttentionState;
  define<AttentionState>(module, "AttentionState",
                         "The attention zones: where a person looks, relative to the robot. \"Left\" and \"right\" are "
                         "the person's own. Unknown: no zone is known.",
                         {{"Unknown", AttentionState::Unknown},
                          {"LookingAtRobot", AttentionState::LookingAtRobot},
                          {"LookingUp", AttentionState::LookingUp},
                          {"LookingDown", AttentionState::LookingDown},
                          {"LookingLeft", AttentionState::LookingLeft},
                          {"LookingRight", AttentionState::LookingRight},
                          {"LookingUpLeft", AttentionState::LookingUpLeft},
                          {"LookingUpRight", AttentionState::LookingUpRight},
                          {"LookingDownLeft", AttentionState::LookingDownLeft},
                          {"LookingDownRight", AttentionState::LookingDownRight}});
}

void definePersons(py::module_& module)
{
  define<KV::PersonDescription>(module, "PersonDescription",
                                "What PersonState.personEmotion() may be asked for: the positive or the negative part "
                                "of the valence, or the attention.",
                                {{"Positive", KV::Positive}, {"Negative", KV::Negative}, {"Attention", KV::Attention}});
  define<KV::PleasureState>(module, "PleasureState",
                            "The valence as a discrete state, by the process-wide boundaries.\n\n"
                            "PleasureUnknown: confidence below the confidence boundary. PleasureNegative: valence "
                            "below the negative boundary. PleasureNeutral: between the boundaries, or at the negative "
                            "one. PleasurePositive: at or above the positive boundary.",
                            {{"PleasureUnknown", KV::PleasureUnknown},
                             {"PleasureNegative", KV::PleasureNegative},
                             {"PleasureNeutral", KV::PleasureNeutral},
                             {"PleasurePositive", KV::PleasurePositive}});
  define<KV::BodyLanguageDescription>(module, "BodyLanguageDescription",
                                      "What BodyLanguageState.bodyLanguageState() may be asked for.",
                                      {{"BodyLanguageEaseDescription", KV::BodyLanguageEaseDescription}});
  define<KV::PointDescription>(module, "PointDescription",
                               "The twelve facial points by number: what each one means belongs to the face analyser.",
                               {{"FacialPoint0", KV::FacialPoint0},
                                {"FacialPoint1", KV::FacialPoint1},
                                {"FacialPoint2", KV::FacialPoint2},
                                {"FacialPoint3", KV::FacialPoint3},
                                {"FacialPoint4", KV::FacialPoint4},
                                {"FacialPoint5", KV::FacialPoint5},
                                {"FacialPoint6", KV::FacialPoint6},
                                {"FacialPoint7", KV::FacialPoint7},
                                {"FacialPoint8", KV::FacialPoint8},
                                {"FacialPoint9", KV::FacialPoint9},
                                {"FacialPoint10", KV::FacialPoint10},
                                {"FacialPoint11", KV::FacialPoint11}});
}

void defineRoom(py::module_& module)
{
  define<KV::AmbianceDescription>(module, "AmbianceDescription",
                                  "What AmbianceState.ambientActivityLevel() may be asked for.",
                                  {{"AmbianceActivity", KV::AmbianceActivity}, {"AmbianceCalm", KV::AmbianceCalm}});
  define<KV::ExcitationState>(module, "ExcitationState", "How excited a room is. ExcitationUnknown is never returned.",
                              {{"ExcitationUnknown", KV::ExcitationUnknown},
                               {"AmbianceNotExcited", KV::AmbianceNotExcited},
                               {"AmbianceExcited", KV::AmbianceExcited}});
}

void defineEstimation(py::module_& module)
{
  define<KV::RampSlope>(module, "RampSlope",
                        "Which way a Ramp runs as the input rises: down from the amplitude to 0, or up from 0 to the "
                        "amplitude.",
                        {{"RampDown", KV::RampDown}, {"RampUp", KV::RampUp}});
  define<KV::Quantity>(module, "Quantity",
                       "The quantities of an estimate that forces move. The valences lie in [-1, 1], everything else "
                       "in [0, 1].",
                       {{"ValenceQuantity", KV::ValenceQuantity},
                        {"UnsmoothedValenceQuantity", KV::UnsmoothedValenceQuantity},
                        {"ValenceConfidenceQuantity", KV::ValenceConfidenceQuantity},
                        {"UnsmoothedValenceConfidenceQuantity", KV::UnsmoothedValenceConfidenceQuantity},
                        {"AttentionQuantity", KV::AttentionQuantity},
                        {"AttentionConfidenceQuantity", KV::AttentionConfidenceQuantity}});
  define<KV::ZoneEvidence>(module, "ZoneEvidence",
                           "What decided on an attention zone.\n\n"
                           "NoAttentionEvidence: neither head nor gaze was seen lately, so there is no zone. "
                           "HeadTurnedAwayEvidence: the head is turned too far for any zone. AttentionEvidence: the "
                           "attention is that of somebody who looks at the robot. HeadEvidence: the yaw of the head, "
                           "with the pitch of the gaze. GazeEvidence: the gaze.",
                           {{"NoAttentionEvidence", KV::NoAttentionEvidence},
                            {"HeadTurnedAwayEvidence", KV::HeadTurnedAwayEvidence},
                            {"AttentionEvidence", KV::AttentionEvidence},
                            {"HeadEvidence", KV::HeadEvidence},
                            {"GazeEvidence", KV::GazeEvidence}});
}

}  // namespace

void bindEnumerations(py::module_& module)
{
  defineVocabulary(module);
  definePersons(module);
  defineRoom(module);
  defineEstimation(module);
}

}  // namespace binding
