#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <boost/optional/optional.hpp>

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace replaytests
{

/// A reader that returns the entries that a test wrote for it.
class ScriptedReader : public KV::recordings::Reader
{
public:
  /// One call of next(): returns an entry or throws.
  using Step = std::function<KV::recordings::Step()>;

  static Step entry(const KV::recordings::Step& entry)
  {
    return [entry] { return entry; };
  }

  static Step badLine(std::size_t line)
  {
    return [line]() -> KV::recordings::Step {
      throw KV::recordings::BadLine({"face.csv", line, "pose_Rx"}, "expected a number, found 'abc'");
    };
  }

  static Step damage(std::size_t line)
  {
    return [line]() -> KV::recordings::Step { throw KV::recordings::Error({"face.csv", line, ""}, "damaged"); };
  }

  explicit ScriptedReader(std::vector<Step> steps, std::vector<std::string> warnings = {})
    : _steps(std::move(steps)), _warnings(std::move(warnings))
  {}

  boost::optional<KV::recordings::Step> next() override
  {
    if (_next == _steps.size())
      return boost::none;
    return _steps[_next++]();
  }

  std::vector<std::string> describe() const override { return {"signs as scripted", "rate as scripted"}; }
  std::vector<std::string> takeWarnings() override { return std::exchange(_warnings, {}); }
  double progress() const override { return static_cast<double>(_next) / static_cast<double>(_steps.size()); }

private:
  std::vector<Step> _steps;
  std::size_t _next = 0;
  std::vector<std::string> _warnings;
};

}  // namespace replaytests
