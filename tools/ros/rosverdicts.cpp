#include "ros/rosverdicts.hpp"

#include "ros/rosanswers.hpp"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <utility>

namespace KV::tools
{

namespace
{

using Json = nlohmann::ordered_json;

constexpr double nanosecondsPerSecond = 1e9;

std::string textOf(const session::ScopeVerdict& verdict)
{
  Json persons = Json::array();
  for (const auto& [person, ofPerson] : verdict.persons)
  {
    if (persons.size() == RosVerdicts::mostPersons)
      break;
    persons.push_back({{"id", idInTopics(ofPerson.summary.name(), person)},
                       {"verdict", ofPerson.word},
                       {"updates", ofPerson.updates}});
  }
  const auto lasted = static_cast<double>((verdict.to - verdict.from).count());
  const Json json = {{"scope", verdict.name},
                     {"end", scopeEndName(verdict.end)},
                     {"seconds", lasted / nanosecondsPerSecond},
                     {"persons", std::move(persons)}};
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);  // the name need not be UTF-8
}

}  // namespace

RosVerdicts::RosVerdicts(ros2::Bus& bus) : _bus(bus)
{
  try
  {
    _bus.announceTexts(topic);
  }
  catch (const std::runtime_error& error)
  {
    _error = error.what();
  }
}

void RosVerdicts::scopeJudged(const session::ScopeVerdict& verdict)
{
  if (!_error.empty())
    return;
  try
  {
    _bus.publish(topic, ros2::TextMessage{textOf(verdict)});
  }
  catch (const std::runtime_error& error)
  {
    _error = error.what();
  }
}

}  // namespace KV::tools
