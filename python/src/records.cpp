#include "module.hpp"
#include "representation.hpp"
#include "timestamped.hpp"
#include "valueconfidence.hpp"
#include "written.hpp"

#include <skeigiot/contextemotion.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/headposture.hpp>
#include <skeigiot/robotheadposture.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/voiceemotion.hpp>

namespace py = pybind11;

namespace binding
{

namespace
{

using Scored = KV::ValueConfidence<float>;

void bindGaze(py::module_& module)
{
  py::class_<KV::Gaze> record(module, "Gaze", "Direction of a person's gaze. Stores its values unchanged.");
  record.def(py::init<float, float>(), py::arg("yaw") = 0.f, py::arg("pitch") = 0.f)
      .def_readwrite("yaw", &KV::Gaze::yaw,
                     "[deg], positive is to the person's own left (the opposite sign of a head yaw)")
      .def_readwrite("pitch", &KV::Gaze::pitch, "[deg], positive is up");
  describeRecord(record, {"yaw", "pitch"});
}

void bindHeadPosture(py::module_& module)
{
  py::class_<KV::HeadPosture> record(module, "HeadPosture",
                                     "Orientation of a person's head. Stores its values unchanged.\n\n"
                                     "A NaN angle answers False to every direction test. A posture can be both up and "
                                     "left; it is never both up and down. str() has the angles, with a word for each.");
  record.def(py::init<float, float, float>(), py::arg("yaw") = 0.f, py::arg("pitch") = 0.f, py::arg("roll") = 0.f)
      .def_property("yaw", &KV::HeadPosture::yaw, &KV::HeadPosture::setYaw,
                    "[deg], positive is turned to the person's own right")
      .def_property("pitch", &KV::HeadPosture::pitch, &KV::HeadPosture::setPitch, "[deg], positive is up")
      .def_property("roll", &KV::HeadPosture::roll, &KV::HeadPosture::setRoll,
                    "[deg], positive is tilted to the person's own right shoulder")
      .def("setYaw", &KV::HeadPosture::setYaw, py::arg("yaw"))
      .def("setPitch", &KV::HeadPosture::setPitch, py::arg("pitch"))
      .def("setRoll", &KV::HeadPosture::setRoll, py::arg("roll"))
      .def("setHeadPosture", &KV::HeadPosture::setHeadPosture, py::arg("yaw"), py::arg("pitch"), py::arg("roll"),
           "Sets all three angles, in degrees.")
      .def("isUp", &KV::HeadPosture::isUp, "Returns whether the pitch is 6 degrees or more.")
      .def("isDown", &KV::HeadPosture::isDown, "Returns whether the pitch is -6 degrees or less.")
      .def("isLeft", &KV::HeadPosture::isLeft, "Returns whether the yaw is -6 degrees or less.")
      .def("isRight", &KV::HeadPosture::isRight, "Returns whether the yaw is 6 degrees or more.")
      .def("__str__", &written<KV::HeadPosture>);
  record.attr("upBoundary") = KV::HeadPosture::upBoundary;
  record.attr("downBoundary") = KV::HeadPosture::downBoundary;
  record.attr("leftBoundary") = KV::HeadPosture::leftBoundary;
  record.attr("rightBoundary") = KV::HeadPosture::rightBoundary;
  describeRecord(record, {"yaw", "pitch", "roll"});
}

void bindRobotHeadPosture(py::module_& module)
{
  py::class_<KV::RobotHeadPosture> record(module, "RobotHeadPosture",
                                          "Orientation of the robot's own head. Stores its values unchanged.");
  record.def(py::init<float, float>(), py::arg("yaw") = 0.f, py::arg("pitch") = 0.f)
      .def_readwrite("yaw", &KV::RobotHeadPosture::yaw, "[deg]; only its changes are read")
      .def_readwrite("pitch", &KV::RobotHeadPosture::pitch, "[deg]; only its changes are read");
  describeRecord(record, {"yaw", "pitch"});
}

void bindSmile(py::module_& module)
{
  py::class_<KV::Smile> record(module, "Smile", "How much a person smiles. Stores its values unchanged.");
  record.def(py::init<float, float>(), py::arg("value") = 0.f, py::arg("confidence") = 0.f)
      .def_readwrite("value", &KV::Smile::value, "degree of the smile, meant to lie in [0, 1]")
      .def_readwrite("confidence", &KV::Smile::confidence, "meant to lie in [0, 1]")
      .def("smile", &KV::Smile::smile, "Returns degree and confidence as one value.")
      .def("setSmile", &KV::Smile::setSmile, py::arg("smile"), "Sets degree and confidence.");
  describeRecord(record, {"value", "confidence"});
}

void bindExpressions(py::module_& module)
{
  py::class_<KV::Expressions> record(module, "Expressions",
                                     "Scores of seven emotional expressions, each meant to lie in [0, 1]. Stores what "
                                     "it is given.");
  record
      .def(py::init([](Scored calm, Scored anger, Scored joy, Scored sorrow, Scored laughter, Scored excitement,
                       Scored surprise) {
             return KV::Expressions{calm, anger, joy, sorrow, laughter, excitement, surprise};
           }),
           py::arg("calm") = Scored(), py::arg("anger") = Scored(), py::arg("joy") = Scored(),
           py::arg("sorrow") = Scored(), py::arg("laughter") = Scored(), py::arg("excitement") = Scored(),
           py::arg("surprise") = Scored())
      .def_readwrite("calm", &KV::Expressions::calm)
      .def_readwrite("anger", &KV::Expressions::anger)
      .def_readwrite("joy", &KV::Expressions::joy)
      .def_readwrite("sorrow", &KV::Expressions::sorrow)
      .def_readwrite("laughter", &KV::Expressions::laughter)
      .def_readwrite("excitement", &KV::Expressions::excitement)
      .def_readwrite("surprise", &KV::Expressions::surprise);
  describeRecord(record, {"calm", "anger", "joy", "sorrow", "laughter", "excitement", "surprise"});
}

void bindVoiceEmotion(py::module_& module)
{
  py::class_<KV::VoiceEmotion, KV::Expressions> record(
      module, "VoiceEmotion",
      "Emotional scores of a person's voice. Stores its values unchanged.\n\n"
      "A voice analyser has no score for surprise: that attribute is inherited, and stays 0 unless it is set. str() is "
      "\"Calm : \" and nothing else.");
  record
      .def(py::init<Scored, Scored, Scored, Scored, Scored, Scored>(), py::arg("calm") = Scored(),
           py::arg("anger") = Scored(), py::arg("joy") = Scored(), py::arg("sorrow") = Scored(),
           py::arg("laughter") = Scored(), py::arg("excitement") = Scored())
      .def("__str__", &written<KV::VoiceEmotion>);
  describeRecord(record, {"calm", "anger", "joy", "sorrow", "laughter", "excitement"});
}

void bindContextEmotion(py::module_& module)
{
  py::class_<KV::ContextEmotion> record(module, "ContextEmotion",
                                        "An emotion that the context of the interaction imposes. Stores what it is "
                                        "given.");
  record.def(py::init<std::int32_t, float>(), py::arg("valence"), py::arg("lifetime"))
      .def_readwrite("valence", &KV::ContextEmotion::valence, "target valence, a number such as -1, 0 or 1")
      .def_readwrite("lifetime", &KV::ContextEmotion::lifetime,
                     "[s], the age at which its pull has fallen to one half");
  describeRecord(record, {"valence", "lifetime"});
}

}  // namespace

void bindRecords(py::module_& module)
{
  bindValueConfidence(module);
  bindTimestamped(module);
  bindGaze(module);
  bindHeadPosture(module);
  bindRobotHeadPosture(module);
  bindSmile(module);
  bindExpressions(module);
  bindVoiceEmotion(module);
  bindContextEmotion(module);
}

}  // namespace binding
