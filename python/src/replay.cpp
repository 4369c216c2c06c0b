#include "cycle.hpp"
#include "module.hpp"
#include "replayrun.hpp"
#include "signalcheck.hpp"
#include "silencedlog.hpp"
#include "texts.hpp"
#include "unlocked.hpp"

#include <skeigiot/recordings/interruptioncheck.hpp>
#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/recordings/table.hpp>
#include <skeigiot/session/agreementrecorder.hpp>
#include <skeigiot/session/boundary.hpp>
#include <skeigiot/session/orderedjobs.hpp>
#include <skeigiot/session/possiblejobs.hpp>

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace binding
{

namespace
{

/// Ends a replay because another one of the same call failed.
struct Cancelled
{};

/// Sets boundaries of the library, and restores the old ones. They are process-wide, so only one replay at a time may
/// do so.
class SetBoundaries
{
public:
  /// \throws std::invalid_argument if the library rejects a value.
  explicit SetBoundaries(const std::map<std::string, float>& values)
  {
    if (values.empty())
      return;
    _lock = std::unique_lock<std::mutex>(mutex());
    _saved.emplace();
    for (const KV::session::Boundary& boundary : KV::session::boundaries())
    {
      const auto value = values.find(boundary.option);
      const SilencedLog silenced;
      if (value != values.end() && !KV::session::setBoundary(boundary, value->second))
        throw std::invalid_argument(KV::session::boundaryRefusal(boundary, value->second));
    }
  }

  SetBoundaries(const SetBoundaries&) = delete;
  SetBoundaries& operator=(const SetBoundaries&) = delete;

private:
  static std::mutex& mutex()
  {
    static std::mutex mutex;
    return mutex;
  }

  std::unique_lock<std::mutex> _lock;
  std::optional<KV::session::SavedBoundaries> _saved;
};

/// \param hint  after the message
py::object errorOf(const boost::optional<KV::recordings::Error>& error, const std::string& hint = {})
{
  if (!error)
    return py::none();
  const auto& place = error->place();
  return py::make_tuple(textOf(error->what() + hint), textOf(place.file), place.line, textOf(place.field));
}

double secondsOf(KV::session::Duration duration)
{
  return static_cast<double>(duration.count()) / 1e9;
}

py::tuple verdictOf(const KV::session::ScopeVerdict& verdict)
{
  py::dict persons;
  for (const auto& [person, found] : verdict.persons)
    persons[py::int_(person)] = py::make_tuple(found.word, found.updates);
  return py::make_tuple(textOf(verdict.name), secondsOf(verdict.from), secondsOf(verdict.to),
                        KV::session::scopeEndName(verdict.end), persons);
}

py::dict dictOf(ReplayOutcome& outcome)
{
  py::list verdicts;
  for (const KV::session::ScopeVerdict& verdict : outcome.tables.verdicts)
    verdicts.append(verdictOf(verdict));
  py::dict dict;
  dict["name"] = textOf(outcome.name);
  dict["length"] = secondsOf(outcome.length);
  dict["description"] = textsOf(outcome.description);
  dict["learned"] = textsOf(outcome.learned);
  dict["warnings"] = textsOf(outcome.warnings);
  dict["error"] = errorOf(outcome.error, outcome.hint);
  dict["verdicts"] = verdicts;
  dict["updates"] = outcome.tables.updates.take();
  dict["summary"] = textOf(outcome.summary);
  dict["forces"] = outcome.tables.forces.take();
  dict["zone_changes"] = outcome.tables.zoneChanges.take();
  dict["ambiance"] = outcome.tables.ambiance.take();
  return dict;
}

/// The arrays of a frame must not change while it is used.
KV::recordings::Table frameFrom(const py::tuple& source)
{
  using Numbers = py::array_t<double, py::array::c_style>;
  using Moments = py::array_t<std::int64_t, py::array::c_style>;
  KV::recordings::Table frame;
  frame.name = source[0].cast<std::string>();
  frame.rows = source[1].cast<std::size_t>();
  if (!source[2].is_none())
    frame.moments = source[2].cast<Moments>().data();
  for (const py::handle column : source[3].cast<py::list>())
  {
    const auto pair = column.cast<py::tuple>();
    KV::recordings::TableColumn& added = frame.columns.emplace_back();
    added.name = pair[0].cast<std::string>();
    if (py::isinstance<Numbers>(pair[1]))
      added.numbers = pair[1].cast<Numbers>().data();
    else
      added.texts = pair[1].cast<std::vector<std::string>>();
  }
  return frame;
}

template <typename T>
void take(const py::dict& options, const char* name, boost::optional<T>& target)
{
  if (!options[name].is_none())
    target = options[name].cast<T>();
}

/// Parses the option, and names it in errors.
template <typename T>
T parsed(const py::dict& options, const char* name, T (*parse)(const std::string&))
{
  try
  {
    return parse(options[name].cast<std::string>());
  }
  catch (const std::invalid_argument& error)
  {
    throw py::value_error(name + std::string(": ") + error.what());
  }
}

KV::recordings::ReadingOptions readingFrom(const py::dict& options)
{
  KV::recordings::ReadingOptions reading;
  take(options, "fps", reading.framesPerSecond);
  take(options, "camera_height", reading.cameraHeight);
  reading.mirrored = options["mirrored"].cast<bool>();
  reading.lineOfSight = options["line_of_sight"].cast<bool>();
  reading.minimalConfidence = options["min_confidence"].cast<float>();
  reading.actionUnitFullScale = options["au_full_scale"].cast<float>();
  reading.rest = parsed(options, "rest", &KV::recordings::parseRest);
  if (!options["look_at"].cast<std::string>().empty())
    reading.lookAt = parsed(options, "look_at", &KV::recordings::parseLookAt);
  reading.mapping = options["mapping"].cast<std::string>();
  reading.personColumn = options["person_from"].cast<std::string>();
  reading.rateName = "fps=";
  reading.mappingName = "mapping=";
  return reading;
}

std::vector<KV::session::ScopeSpan> scopesFrom(const py::list& source)
{
  std::vector<KV::session::ScopeSpan> scopes;
  for (const py::handle item : source)
  {
    const auto scope = item.cast<py::tuple>();
    KV::session::ScopeSpan span{scope[0].cast<std::string>(), KV::session::Duration(scope[1].cast<std::int64_t>()),
                                boost::none};
    if (!scope[2].is_none())
      span.to = KV::session::Duration(scope[2].cast<std::int64_t>());
    scopes.push_back(std::move(span));
  }
  return scopes;
}

/// All arguments except the session.
ReplayRequest requestFrom(const py::dict& options)
{
  ReplayRequest request;
  request.format = options["format"].cast<std::string>();
  request.reading = readingFrom(options);
  request.skipBad = options["skip_bad"].cast<bool>();
  request.explain = options["explain"].cast<bool>();
  request.cycle = cycleFrom(options["cycle"]);
  request.scopes = scopesFrom(options["scopes"].cast<py::list>());
  return request;
}

using Boundaries = std::map<std::string, float>;

Boundaries boundariesFrom(const py::dict& options)
{
  return options["boundaries"].cast<Boundaries>();
}

/// As above, with the items of the list, the inputs of one session: each a frame or a path, with its offset in
/// nanoseconds.
ReplayRequest requestFrom(const py::list& inputs, const py::dict& options)
{
  ReplayRequest request = requestFrom(options);
  for (const py::handle item : inputs)
  {
    const auto input = item.cast<py::tuple>();
    const KV::session::Duration offset(input[1].cast<std::int64_t>());
    if (py::isinstance<py::bytes>(input[0]))
    {
      request.session.inputs.push_back({input[0].cast<std::string>(), offset});
      continue;
    }
    KV::recordings::Table frame = frameFrom(input[0].cast<py::tuple>());
    request.session.inputs.push_back({frame.name, offset});
    request.frames.emplace(frame.name, std::move(frame));
  }
  return request;
}

/// Replays one session.
py::dict replayOne(const py::list& inputs, const py::dict& options)
{
  const ReplayRequest request = requestFrom(inputs, options);
  const Boundaries boundaries = boundariesFrom(options);
  SignalCheck check;
  ReplayOutcome outcome = unlocked([&] {
    const KV::recordings::InterruptionCheck whileReading(std::ref(check));
    const SetBoundaries set(boundaries);
    ReplayOutcome played = replay(request, std::ref(check));
    SignalCheck::runHandlers();  // a signal may have ended it
    return played;
  });
  return dictOf(outcome);
}

KV::session::AgreementOptions comparisonFrom(const py::dict& source)
{
  KV::session::AgreementOptions options;
  for (const auto& [label, state] : source["meanings"].cast<std::map<std::string, std::string>>())
    options.mapping.add(std::string(label).append("=").append(state));
  for (const std::string& state : source["unlabelled"].cast<std::vector<std::string>>())
    options.mapping.setUnlabelled(state);
  options.valueQuantity = source["value"].cast<std::string>();
  if (!source["scale"].is_none())
    options.scale = source["scale"].cast<std::pair<double, double>>();
  options.persons = source["persons"].cast<std::map<std::string, std::int32_t>>();
  for (const std::string& tier : source["tiers"].cast<std::vector<std::string>>())
    options.tiers.insert(tier);
  options.offset = source["offset"].cast<double>();
  options.maximalDelay = source["max_delay"].cast<double>();
  return options;
}

/// Plays one session and compares it with the labels of files; returns the agreement as JSON, and warnings.
py::tuple agreeOne(const py::list& inputs, const std::vector<std::string>& labels, const py::dict& options,
                   const py::dict& comparison)
{
  const ReplayRequest request = requestFrom(inputs, options);
  const Boundaries boundaries = boundariesFrom(options);
  const KV::session::AgreementOptions comparing = comparisonFrom(comparison);
  std::vector<std::string> warnings;
  SignalCheck check;
  const std::string json = unlocked([&] {
    const KV::recordings::InterruptionCheck whileReading(std::ref(check));
    std::vector<KV::recordings::Labels> read;
    for (const std::string& path : labels)
    {
      read.push_back(KV::recordings::readLabels(path));
      for (const std::string& warning : read.back().warnings)
        warnings.push_back(std::string(path).append(": ").append(warning));
    }
    const SetBoundaries set(boundaries);
    KV::session::AgreementRecorder recorder;
    ReplayOutcome played = play(request, {&recorder}, std::ref(check));
    SignalCheck::runHandlers();  // a signal may have ended it
    if (played.error)
      throw KV::recordings::Error(*played.error);
    warnings.insert(warnings.end(), played.warnings.begin(), played.warnings.end());
    std::ostringstream text;
    KV::session::writeAsJson(text, recorder.compare(read, comparing));
    return text.str();
  });
  return py::make_tuple(json, textsOf(warnings));
}

/// Each on a thread of its own, `jobs` at a time.
std::vector<ReplayOutcome> replayEach(const std::vector<ReplayRequest>& requests, std::size_t jobs)
{
  using Jobs = KV::session::OrderedJobs<ReplayOutcome>;
  Jobs running(requests.size(), KV::session::possibleJobs(jobs),
               [&requests](std::size_t number, const Jobs::Cancelled& cancelled) {
                 const auto check = [&cancelled] {
                   if (cancelled)
                     throw Cancelled();
                 };
                 const KV::recordings::InterruptionCheck whileReading(check);
                 return replay(requests[number], check);
               });
  std::vector<ReplayOutcome> outcomes;
  while (outcomes.size() < requests.size())
    outcomes.push_back(running.take([] { SignalCheck::runHandlers(); }));
  return outcomes;
}

/// Replays files, and all recordings of folders, each as a session of its own; returns notes and outcomes.
py::tuple replayAll(const std::vector<std::string>& paths, std::size_t jobs, const py::dict& options)
{
  const ReplayRequest common = requestFrom(options);
  const Boundaries boundaries = boundariesFrom(options);
  std::vector<std::string> notes;
  SignalCheck check;
  std::vector<ReplayOutcome> outcomes = unlocked([&] {
    const KV::recordings::InterruptionCheck whileReading(std::ref(check));
    KV::session::SessionPlan plan = KV::session::planSessions({paths, {}, true, common.format});
    notes = std::move(plan.notes);
    std::vector<ReplayRequest> requests;
    for (KV::session::SessionInputs& session : plan.sessions)
    {
      ReplayRequest& request = requests.emplace_back(common);
      request.session = std::move(session);
      request.number = static_cast<std::int32_t>(requests.size());
    }
    const SetBoundaries set(boundaries);
    return replayEach(requests, jobs);
  });
  py::list dicts;
  for (ReplayOutcome& outcome : outcomes)
    dicts.append(dictOf(outcome));
  return py::make_tuple(textsOf(notes), dicts);
}

/// The exceptions of planning the sessions.
void translateRecordingError(std::exception_ptr exception)
{
  try
  {
    if (exception)
      std::rethrow_exception(exception);
  }
  catch (const KV::recordings::Error& error)
  {
    const py::object type = py::module_::import("skeigiot._result").attr("RecordingError");
    PyErr_SetObject(type.ptr(), type(*errorOf(error).cast<py::tuple>()).ptr());
  }
}

}  // namespace

void bindReplay(py::module_& module)
{
  py::register_exception_translator(translateRecordingError);
  py::list formats;
  for (const KV::recordings::Format& format : KV::recordings::recordingFormats())
    formats.append(format.name);
  module.attr("_formats") = py::tuple(formats);
  module.attr("_columns") = py::tuple(py::cast(KV::recordings::tableColumns()));
  py::list boundaries;
  for (const KV::session::Boundary& boundary : KV::session::boundaries())
    boundaries.append(boundary.option);
  module.attr("_boundaries") = py::tuple(boundaries);
  module.def("_agree", &agreeOne, py::arg("inputs"), py::arg("labels"), py::arg("options"), py::arg("comparison"));
  module.def("_replay", &replayOne, py::arg("inputs"), py::arg("options"));
  module.def("_replayAll", &replayAll, py::arg("paths"), py::arg("jobs"), py::arg("options"));
}

}  // namespace binding
