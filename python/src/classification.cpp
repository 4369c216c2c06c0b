#include "module.hpp"
#include "representation.hpp"

#include <skeigiot/classification/argmaxclassifiertype.hpp>
#include <skeigiot/classification/coefficient.hpp>
#include <skeigiot/classification/linregmoodscore.hpp>
#include <skeigiot/classification/logregmoodscore.hpp>
#include <skeigiot/classification/moodclass.hpp>
#include <skeigiot/classification/moodclassifier.hpp>

#include <pybind11/stl.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace binding
{

namespace
{

using KV::classification::ArgmaxClassifierType;
using KV::classification::Coefficient;
using KV::classification::LinregMoodScore;
using KV::classification::LogregMoodScore;

// In Python, classes refer to scores, and classifiers to rules, which may be written in Python as well. So the classes
// here belong to the bindings, and keep the objects they refer to; the library does the computing.

struct MoodScore
{};

template <typename Score>
struct RegressionScore : MoodScore
{
  explicit RegressionScore(Score score_) : score(std::move(score_)) {}

  Score score;
};

struct MoodClass
{
  std::string name;
  std::int32_t value;
  py::object moodScore;
  float score = 0.f;
};

struct MoodClassifierType
{};

struct ArgmaxRule : MoodClassifierType
{
  explicit ArgmaxRule(float threshold) : rule(threshold) {}

  ArgmaxClassifierType rule;
};

struct MoodClassifier
{
  py::object type;
};

/// Arguments that the library needs besides features and scores, and does not read.
KV::classification::MoodClass unread(std::int32_t value = 0)
{
  static const LinregMoodScore score(0, 0.f);
  return {"", value, score};
}

[[noreturn]] void refuseAbstract(const char* operation)
{
  PyErr_SetString(PyExc_NotImplementedError, operation);
  throw py::error_already_set();
}

template <typename Score>
float scoreOf(const RegressionScore<Score>& self, const py::object&, const std::vector<float>& features)
{
  try
  {
    return self.score.calculateScore(unread(), features);
  }
  catch (const std::runtime_error& error)
  {
    throw py::value_error(error.what());  // features that do not fit the weights are a bad argument
  }
}

void rate(const py::object& self, const std::vector<float>& features)
{
  auto& moodClass = self.cast<MoodClass&>();
  moodClass.score = moodClass.moodScore.attr("calculateScore")(self, features).cast<float>();
}

/// Sorts the objects of the list by the classes; their values are the objects' places before.
void reorder(py::list& list, const std::vector<KV::classification::MoodClass>& classes)
{
  const py::list before(list[py::slice(0, static_cast<py::ssize_t>(list.size()), 1)]);
  for (std::size_t i = 0; i < classes.size(); ++i)
    list[i] = before[static_cast<std::size_t>(classes[i].value)];
}

py::object winnerByArgmax(const ArgmaxRule& self, const py::object&, py::list& list)
{
  if (list.size() < 2)
    throw py::value_error("a classification needs two classes at least");
  std::vector<KV::classification::MoodClass> classes;
  for (const py::handle object : list)
  {
    classes.push_back(unread(static_cast<std::int32_t>(classes.size())));
    classes.back().score = object.cast<const MoodClass&>().score;
  }
  try
  {
    const auto& winner = KV::classification::MoodClassifier(self.rule).classify(classes);
    py::object object = list[static_cast<std::size_t>(winner.value)];
    reorder(list, classes);
    return object;
  }
  catch (const std::runtime_error&)
  {
    reorder(list, classes);
    throw;
  }
}

void bindCoefficient(py::module_& module)
{
  py::class_<Coefficient> coefficient(module, "Coefficient",
                                      "The fitted parameters of a mood score. Stores its values unchanged.");
  coefficient.def(py::init<std::vector<float>, float>(), py::arg("weights"), py::arg("intercept"))
      .def_readwrite("weights", &Coefficient::weights,
                     "one weight per feature, in feature order; a copy, so assign a list to change them")
      .def_readwrite("intercept", &Coefficient::intercept, "the constant term");
  describeRecord(coefficient, {"weights", "intercept"});
}

template <typename Score>
auto bindRegression(py::module_& module, const char* name, const char* doc, const char* formula)
{
  constexpr const char* setDoc =
      "Returns the built-in set for the five valence features: smile, calm, joy, anger, sorrow.";
  using Bound = RegressionScore<Score>;
  py::class_<Bound, MoodScore> score(module, name, doc);
  score
      .def(py::init([](int n, float intercept) { return Bound(Score(n, intercept)); }), py::arg("n"),
           py::arg("intercept"), "Makes a score with n weights of 1. Raises ValueError if n is negative.")
      .def(py::init([](const Coefficient& coefficient) { return Bound(Score(coefficient)); }), py::arg("coefficient"))
      .def("calculateScore", &scoreOf<Score>, py::arg("moodClass"), py::arg("features"), formula)
      .def_static("COEFFICIENT_POS", &Score::COEFFICIENT_POS, py::return_value_policy::copy, setDoc)
      .def_static("COEFFICIENT_NEU", &Score::COEFFICIENT_NEU, py::return_value_policy::copy, setDoc)
      .def_static("COEFFICIENT_NEG", &Score::COEFFICIENT_NEG, py::return_value_policy::copy, setDoc);
  return score;
}

void bindScores(py::module_& module)
{
  py::class_<MoodScore>(module, "MoodScore",
                        "Rates how well a feature vector fits a mood class. Derive from it and define "
                        "calculateScore().")
      .def(py::init<>())
      .def(
          "calculateScore",
          [](const MoodScore&, const py::object&, const std::vector<float>&) -> float {
            refuseAbstract("a MoodScore defines calculateScore()");
          },
          py::arg("moodClass"), py::arg("features"), "Returns the score of the features for the class.");
  bindRegression<LinregMoodScore>(
      module, "LinregMoodScore", "A linear regression score, as a mean per feature.",
      "Returns (sum of weight x feature + intercept) / number of features; the class is not read.\n\n"
      "The sum is in single precision, in index order. Without weights and features the result is the intercept over "
      "0.\n\nRaises ValueError \"Z vector size does not match the feature size\" if there is not one feature per "
      "weight.");
  bindRegression<LogregMoodScore>(
      module, "LogregMoodScore", "A logistic regression score.",
      "Returns 1 / (exp(-(sum of weight x feature + intercept)) + 1), in single precision; the class is not read.\n\n"
      "In (0, 1) for finite input of moderate size. The sum is in single precision, in index order.\n\n"
      "Raises ValueError \"Z vector size does not match the feature size\" if there is not one feature per weight.")
      .def(
          "setWeights",
          [](RegressionScore<LogregMoodScore>& self, const std::vector<float>& weights, float intercept) {
            self.score.setWeights(weights, intercept);
          },
          py::arg("weights"), py::arg("intercept"), "Replaces weights and intercept.");
}

MoodClass makeClass(std::string name, std::int32_t value, py::object moodScore)
{
  moodScore.cast<const MoodScore&>();  // raises if it has another type
  return {std::move(name), value, std::move(moodScore)};
}

void bindMoodClass(py::module_& module)
{
  py::class_<MoodClass>(module, "MoodClass",
                        "One candidate answer of a classification, with the score that rates it.\n\n"
                        "One is greater than another if its score is.")
      .def(py::init(&makeClass), py::arg("name"), py::arg("value"), py::arg("moodScore"),
           "Makes a class rated by the MoodScore. Raises TypeError for any other object.")
      .def("calculateScore", &rate, py::arg("features"),
           "Rates the features and keeps the result in score.\n\n"
           "Raises what the score raises; score is unchanged then.")
      .def_readwrite("name", &MoodClass::name, "label of the class")
      .def_readwrite("value", &MoodClass::value, "the number of the class")
      .def_readonly("moodScore", &MoodClass::moodScore)
      .def_readwrite("score", &MoodClass::score, "the latest result of calculateScore(); no meaning before the first")
      .def(
          "__gt__", [](const MoodClass& self, const MoodClass& other) { return self.score > other.score; },
          py::is_operator(), py::arg("other"))
      .def(
          "__lt__", [](const MoodClass& self, const MoodClass& other) { return self.score < other.score; },
          py::is_operator(), py::arg("other"))
      .def("__copy__", [](const MoodClass& self) { return MoodClass(self); })
      .def("__repr__", [](const py::object& self) {
        return "<" + representation(self, {"name", "value", "score"}) + ">";
      });
}

void bindClassifier(py::module_& module)
{
  py::class_<MoodClassifierType>(module, "MoodClassifierType",
                                 "The rule by which a MoodClassifier decides. Derive from it and define classify().")
      .def(py::init<>())
      .def(
          "classify",
          [](const MoodClassifierType&, const py::object&, const py::list&) -> py::object {
            refuseAbstract("a MoodClassifierType defines classify()");
          },
          py::arg("classifier"), py::arg("classes"), "Returns the winner, one of the list, which may be reordered.");
  py::class_<ArgmaxRule, MoodClassifierType>(module, "ArgmaxClassifierType",
                                             "The best score wins, if it leads by more than a margin.")
      .def(py::init<float>(), py::arg("threshold"),
           "Makes a rule by which the best score must exceed the second best by more than the threshold.")
      .def(
          "classify", &winnerByArgmax, py::arg("classifier"), py::arg("classes"),
          "Sorts the list into descending order of the scores, and returns the first.\n\n"
          "The order of equal scores is unspecified. With a threshold of 0 a tie for the first place has no winner.\n\n"
          "Raises ValueError for fewer than two classes; RuntimeError \"unknown state: no clear winner found\" if the "
          "lead is not strictly greater than the threshold, or is NaN; the list stays sorted.");
  py::class_<MoodClassifier>(module, "MoodClassifier", "Picks the winner of a list of scored classes by a rule.")
      .def(py::init([](py::object type) {
             type.cast<const MoodClassifierType&>();  // raises if it has another type
             return MoodClassifier{std::move(type)};
           }),
           py::arg("type"),
           "Makes a classifier that decides by the MoodClassifierType. Raises TypeError for any other object.")
      .def(
          "classify",
          [](const py::object& self, const py::list& classes) -> py::object {
            return self.cast<const MoodClassifier&>().type.attr("classify")(self, classes);
          },
          py::arg("classes"),
          "Returns the result of the rule for these classes; an exception of the rule reaches the caller.");
}

}  // namespace

void bindClassification(py::module_& module)
{
  bindCoefficient(module);
  bindScores(module);
  bindMoodClass(module);
  bindClassifier(module);
}

}  // namespace binding
