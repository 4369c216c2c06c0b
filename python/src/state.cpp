#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"
#include "unlocked.hpp"
#include "valueconfidence.hpp"
#include "written.hpp"

#include <skeigiot/personmemory.hpp>
#include <skeigiot/personobservation.hpp>
#include <skeigiot/personstate.hpp>

namespace py = pybind11;

namespace binding
{

namespace
{

using KV::PersonState;
using Class = py::class_<PersonState>;

constexpr const char* boundaryDoc =
    "Any other value, NaN included, changes nothing and is reported by a warning of the logger "
    "\"kvmood.emotionalstate\".";

void bindBoundary(Class& state, const std::string& name, void (*set)(float), float (*get)(),
                  const std::string& interval)
{
  const std::string setDoc = "Sets the process-wide boundary if it lies in " + interval + ".\n\n" + boundaryDoc;
  const std::string getDoc = "Returns the process-wide boundary, in " + interval + ".";
  state.def_static(("set" + name).c_str(), set, py::arg("boundary"), Unlocked(), setDoc.c_str());
  state.def_static(("get" + name).c_str(), get, Unlocked(), getDoc.c_str());
}

void bindBoundaries(Class& state)
{
  bindBoundary(state, "BinaryBoundaryPositive", &PersonState::setBinaryBoundaryPositive,
               &PersonState::getBinaryBoundaryPositive, "(-1, 1); 0.2 by default");
  bindBoundary(state, "BinaryBoundaryNegative", &PersonState::setBinaryBoundaryNegative,
               &PersonState::getBinaryBoundaryNegative, "(-1, 1); -0.2 by default");
  bindBoundary(state, "BinaryBoundaryLookingAtRobot", &PersonState::setBinaryBoundaryLookingAtRobot,
               &PersonState::getBinaryBoundaryLookingAtRobot, "(0, 1); 0.6 by default");
  bindBoundary(state, "BinaryBoundaryStrictlyLookingAtRobot", &PersonState::setBinaryBoundaryStrictlyLookingAtRobot,
               &PersonState::getBinaryBoundaryStrictlyLookingAtRobot, "(0, 1); 0.9 by default");
  bindBoundary(state, "BinaryBoundaryConfidence", &PersonState::setBinaryBoundaryConfidence,
               &PersonState::getBinaryBoundaryConfidence, "(0, 1); 0.4 by default");
}

/// Adds a query under the name that it has in C++, and as a property.
template <typename Query>
void bindQuery(Class& state, const char* name, const char* property, Query query, const std::string& what)
{
  state.def(name, query, Unlocked(), ("Returns " + what).c_str());
  state.def_property_readonly(property, py::cpp_function(query, Unlocked()), what.c_str());
}

void bindEstimates(Class& state)
{
  state.def("personEmotion", &PersonState::personEmotion, py::arg("description"),
            "Returns the positive or negative part of the valence (0 or more), or the attention, each with its "
            "confidence.\n\n"
            "Raises ValueError \"Unknown emotional expression descriptor <description>\" for any other description.");
  state.def_property_readonly(
      "positive", [](const PersonState& self) { return self.personEmotion(KV::Positive); },
      "the positive part of the valence, 0 or more");
  state.def_property_readonly(
      "negative", [](const PersonState& self) { return self.personEmotion(KV::Negative); },
      "the negative part of the valence, 0 or more");
  bindQuery(state, "personValence", "valence", &PersonState::personValence,
            "the smoothed valence, from -1 (negative) to 1 (positive)");
  state.def("hadValenceEvidence", &PersonState::hadValenceEvidence,
            "Returns whether any source of valence ever acted on this state: face, smile, voice, words, touch or "
            "context.\n\n"
            "Until then the valence means nothing, though its confidence may be above 0: well seen facial points "
            "raise it, and body language alone moves the valence a little.");
  bindQuery(state, "personValenceBinary", "valenceBinary", &PersonState::personValenceBinary,
            "the valence as 1 (above 0.2), 0, or -1 (-0.2 or below, or NaN), with the valence's confidence.\n\n"
            "The limits are fixed numbers in double precision, not the process-wide boundaries, and the confidence "
            "does not gate the value.");
  bindQuery(state, "personUnsmoothedValenceBinary", "unsmoothedValenceBinary",
            &PersonState::personUnsmoothedValenceBinary, "the unsmoothed valence by the rule of personValenceBinary()");
  bindQuery(state, "personAttention", "attention", &PersonState::personAttention,
            "the attention, from 0 (absent) to 1 (attends to the robot)");
  bindQuery(state, "personAttentionZone", "attentionZone", &PersonState::personAttentionZone,
            "the name of the attention zone, or \"Unknown\" if it is not known");
  bindQuery(state, "personAttentionState", "attentionState", &PersonState::personAttentionState, "the attention zone");
  bindQuery(state, "personPleasureState", "pleasureState", &PersonState::personPleasureState,
            "the pleasure state by the process-wide boundaries. A NaN valence with enough confidence is "
            "PleasurePositive");
  bindQuery(state, "emotionLogMessage", "logMessage", &PersonState::emotionLogMessage,
            "the mood and the engagement in words, a text of three lines");
}

void bindReadings(Class& state)
{
  bindQuery(state, "smile", "lastSmile", &PersonState::smile, "the last smile taken over");
  bindQuery(state, "expressions", "lastExpressions", &PersonState::expressions,
            "the last facial expressions taken over");
  bindQuery(state, "gaze", "lastGaze", &PersonState::gaze, "the last gaze taken over");
  bindQuery(state, "headAngles", "lastHeadAngles", &PersonState::headAngles, "the last head posture taken over");
  bindQuery(state, "headHeight", "lastHeadHeight", &PersonState::headHeight,
            "the last head height taken over, in metres; 0 before the first");
  state.def(
      "bodyLanguageState", [](PersonState& self) { return self.bodyLanguageState(); },
      "Returns the body-language state of this person, a handle on what the state holds.");
  state.def_property_readonly(
      "ease",
      [](const PersonState& self) {
        return self.bodyLanguageState().bodyLanguageState(KV::BodyLanguageEaseDescription);
      },
      "how much at ease the posture looks");
}

void bindOperations(Class& state)
{
  state
      .def("setFrequencyFace", &PersonState::setFrequencyFace, py::arg("hz"),
           "Stores the rate of the channel, in observations per second; the estimate does not depend on it.")
      .def("setFrequencyGaze", &PersonState::setFrequencyGaze, py::arg("hz"),
           "Stores the rate of the channel, in observations per second; the estimate does not depend on it.")
      .def("decreaseSinceNotSeen", &PersonState::decreaseSinceNotSeen, Unlocked(),
           "Ages the state by one cycle in which the person was not seen: valence and attention move 26 % of the way "
           "to 0, their confidences 70 %.")
      .def("_setValence", &PersonState::_setValence, py::arg("valence"),
           "Stores the valence, clamped to [-1, 1]; a NaN is stored as it is.")
      .def("_update", &PersonState::_update, py::arg("observation"), py::arg("memory"), Unlocked(),
           "Updates the state from the readings in the memory and in the observation; see Person.update().\n\n"
           "The memory is read only. Update one person from one thread at a time.");
}

std::string shown(const py::object& self)
{
  const auto& state = self.cast<const PersonState&>();
  return "<PersonState valence=" + shortest(state.personValence().value) + " (confidence " +
         shortest(state.personValence().confidence) + "), attention=" + shortest(state.personAttention().value) +
         " (confidence " + shortest(state.personAttention().confidence) + "), zone=" + state.personAttentionZone() +
         ">";
}

}  // namespace

void bindState(py::module_& module)
{
  Class state(module, "PersonState",
              "The estimated emotional and attentional state of one person. str() shows it in nine lines.\n\n"
              "A handle: the state of a person and of its copies is the same, so an update through one is seen through "
              "all. Queries may see it in the middle of an update on another thread. Each query is there under its "
              "name in C++, and as a property.");
  state.def(py::init<>(), "Makes a state of its own: valence and attention 0 with confidence 0, no zone.")
      .def(py::init<float, float, float, float>(), py::arg("valence"), py::arg("valenceConfidence"),
           py::arg("attention"), py::arg("attentionConfidence"),
           "Makes a state of its own with these values: valence clamped to [-1, 1], everything else to [0, 1]. A NaN "
           "valence or attention is stored as it is, a NaN confidence as 0.");
  bindBoundaries(state);
  bindEstimates(state);
  bindReadings(state);
  bindOperations(state);
  state.def("__repr__", &shown).def("__str__", &written<PersonState>).def("__copy__", [](const PersonState& self) {
    return PersonState(self);
  });
  refuseCopies(state,
               "a PersonState is a handle: copy.copy() gives another on the same state, and there is no deep copy and "
               "no pickle of it; keep the numbers that you want, or make PersonState(valence, valenceConfidence, "
               "attention, attentionConfidence)");

  py::dict zones;
  for (const auto& [zone, name] : KV::attentionZonesStringMapping)
    zones[py::cast(zone)] = name;
  module.attr("attentionZonesStringMapping") = zones;
}

}  // namespace binding
