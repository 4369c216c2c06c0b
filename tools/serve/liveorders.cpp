#include "serve/liveorders.hpp"

#include <skeigiot/recordings/quote.hpp>
#include <skeigiot/session/boundary.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace KV::tools
{

namespace
{

using Json = nlohmann::json;

constexpr std::size_t longestName = 200;  // [bytes]
constexpr int badRequest = 400;
constexpr int refused = 409;

OrderAnswer scopeOrder(const Json& name, bool isStart, const std::function<std::string(recordings::Step)>& takeScopes)
{
  if (!name.is_string() || name.get_ref<const std::string&>().empty() ||
      name.get_ref<const std::string&>().size() > longestName)
    return {badRequest, "The name of a scope has 1 to " + std::to_string(longestName) + " bytes."};
  recordings::Step step;
  if (isStart)
    step.scopeStarts.push_back({name.get<std::string>(), -1});
  else
    step.scopeStops.push_back(name.get<std::string>());
  std::string refusal = takeScopes(std::move(step));
  return refusal.empty() ? OrderAnswer() : OrderAnswer{refused, std::move(refusal)};
}

OrderAnswer boundaryOrder(const Json& order, session::LiveView& view)
{
  const std::string name = order["boundary"].is_string() ? order["boundary"].get<std::string>() : "";
  const std::vector<session::Boundary>& all = session::boundaries();
  const auto boundary = std::find_if(all.begin(), all.end(), [&](const auto& one) { return one.option == name; });
  if (boundary == all.end())
    return {badRequest, "There is no boundary " + recordings::quote(name) + "."};
  const auto value = order.find("value");
  if (value == order.end() || !value->is_number())
    return {badRequest, "A boundary needs a number as its value."};
  const float number = value->get<float>();
  if (!session::setBoundary(*boundary, number))
    return {refused, session::boundaryRefusal(*boundary, number) + "."};
  view.boundariesChanged();
  return {};
}

}  // namespace

OrderAnswer carryOutScope(const std::string& json, const std::function<std::string(recordings::Step)>& takeScopes)
{
  const Json order = Json::parse(json, nullptr, false);
  if (!order.is_object())
    return {badRequest, "An order is a JSON object."};
  if (const auto name = order.find("startScope"); name != order.end())
    return scopeOrder(*name, true, takeScopes);
  if (const auto name = order.find("stopScope"); name != order.end())
    return scopeOrder(*name, false, takeScopes);
  return {badRequest, "An order has one of the members startScope and stopScope."};
}

OrderAnswer carryOut(const std::string& json, session::LiveView& view,
                     const std::function<std::string(recordings::Step)>& takeScopes)
{
  const Json order = Json::parse(json, nullptr, false);
  if (!order.is_object())
    return {badRequest, "An order is a JSON object."};
  if (order.contains("startScope") || order.contains("stopScope"))
    return carryOutScope(json, takeScopes);
  if (order.contains("boundary"))
    return boundaryOrder(order, view);
  if (order.value("putBack", Json()) == Json(true))
  {
    view.putBoundariesBack();
    return {};
  }
  return {badRequest, "An order has one of the members startScope, stopScope, boundary and putBack."};
}

}  // namespace KV::tools
