#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"
#include "unlocked.hpp"
#include "written.hpp"

#include <skeigiot/bodylanguageease.hpp>
#include <skeigiot/bodylanguagestate.hpp>
#include <skeigiot/personmemory.hpp>

namespace py = pybind11;

namespace binding
{

void bindBodyLanguage(py::module_& module)
{
  py::class_<KV::BodyLanguageEase> ease(
      module, "BodyLanguageEase",
      "How much at ease a person's posture looks. Stores its values unchanged. str() has "
      "the numbers and a word for the feeling.");
  ease.def(py::init<float, float>(), py::arg("level") = 0.f, py::arg("confidence") = 0.f)
      .def_readwrite("level", &KV::BodyLanguageEase::level,
                     "ease in [-0.5, 0.5], both ends included; negative is discomfort, 0 is neutral")
      .def_readwrite("confidence", &KV::BodyLanguageEase::confidence, "0 before the first estimate, 0.5 after it")
      .def("__str__", &written<KV::BodyLanguageEase>);
  describeRecord(ease, {"level", "confidence"});

  py::class_<KV::BodyLanguageState>(module, "BodyLanguageState",
                                    "The body-language estimate of one person: the mean ease of the remembered head "
                                    "postures.\n\nA handle: that of a person and of its copies is the same.")
      .def(py::init<>(), "Makes an estimate of its own with ease (0, 0).")
      .def("update", &KV::BodyLanguageState::update, py::arg("memory"), Unlocked(),
           "Estimates the ease anew from the head postures in the memory; without one it stays as it was.\n\n"
           "Update a person from one thread at a time.")
      .def("bodyLanguageState", &KV::BodyLanguageState::bodyLanguageState,
           py::arg("description") = KV::BodyLanguageEaseDescription,
           "Returns the ease. Raises ValueError \"This descriptor is not valid.\" for any other description.")
      .def("__repr__",
           [](const KV::BodyLanguageState& self) {
             return "<BodyLanguageState " +
                    representation(py::cast(self.bodyLanguageState(KV::BodyLanguageEaseDescription))) + ">";
           })
      .def("__str__", &written<KV::BodyLanguageState>);
}

}  // namespace binding
