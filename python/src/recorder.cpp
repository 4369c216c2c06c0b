#include "module.hpp"
#include "representation.hpp"
#include "times.hpp"
#include "unlocked.hpp"

#include <skeigiot/emotionrecorder.hpp>
#include <skeigiot/verdict.hpp>

#include <pybind11/stl.h>

#include <string>

namespace py = pybind11;

namespace binding
{

namespace
{

void bindEmotionRecorder(py::module_& module)
{
  using Recorder = KV::KVEmotionRecorder;
  py::class_<Recorder>(module, "KVEmotionRecorder",
                       "Records a person's states over named scopes, and judges each scope when it ends.\n\n"
                       "A sample is a pair (time in nanoseconds, state). The state is a handle, so it shows the person "
                       "as they are when it is read.")
      .def(py::init<>(), "Makes a recorder without scopes.")
      .def("__copy__", [](const Recorder& self) { return Recorder(self); })
      .def(
          "startRecording",
          [](Recorder& self, const py::str& scope, int samples) {
            const std::string name = utf8(scope, "scope");
            unlocked([&] { self.startRecording(name, samples); });
          },
          py::arg("scope"), py::arg("samples") = -1,
          "Opens a scope for that many samples (negative: without limit); one that is open already starts anew.")
      .def("update_notMutexed", &Recorder::update_notMutexed, py::arg("state"), Unlocked(),
           "Records the state in every open scope that still takes samples, all with the same time.\n\n"
           "Takes no lock: the caller keeps other operations from running at the same time.")
      .def("hasAnOpenScope_notMutexed", &Recorder::hasAnOpenScope_notMutexed,
           "Returns whether any scope is open, even one that takes no more samples.\n\n"
           "Takes no lock: the caller keeps other operations from running at the same time.")
      .def(
          "stopRecording",
          [](Recorder& self, const py::str& scope) {
            const std::string name = utf8(scope, "scope");
            return unlocked([&] { return self.stopRecording(name); });
          },
          py::arg("scope"),
          "Closes a scope; returns the verdict on its samples as they read now, and the samples.\n\n"
          "The verdict is \"positive\", \"neutral\", \"negative\" or \"unknown\" (see Verdict), or \"error\", with no "
          "samples, if there is no such scope.");
}

void bindVerdict(py::module_& module)
{
  py::class_<KV::Verdict>(module, "Verdict",
                          "Sums up a person's states into one word: how a scope went. Takes constant memory.\n\n"
                          "    mean confidence = sum(c) / n        mean valence = sum(v c) / sum(c)\n\n"
                          "over the n states' valences v and confidences c, in single precision and in the order "
                          "added. Not synchronised.")
      .def(py::init<>())
      .def("add", &KV::Verdict::add, py::arg("state"), Unlocked(), "Adds the state as it is now.")
      .def("word", &KV::Verdict::word, Unlocked(),
           "Returns \"unknown\" if the mean confidence is below the confidence boundary of PersonState; otherwise "
           "\"positive\" if the mean valence is above the positive boundary, \"negative\" if it is below the negative "
           "one, else \"neutral\". Without any state the word is \"neutral\".");
}

}  // namespace

void bindRecorder(py::module_& module)
{
  bindEmotionRecorder(module);
  bindVerdict(module);
}

}  // namespace binding
