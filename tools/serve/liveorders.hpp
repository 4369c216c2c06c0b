#pragma once

#include "serve/orders.hpp"

#include <skeigiot/recordings/step.hpp>
#include <skeigiot/session/liveview.hpp>

#include <functional>
#include <string>

namespace KV::tools
{

/// Starts or stops a scope: the JSON object has the member startScope or stopScope with its name.
///
/// `takeScopes` is as below.
OrderAnswer carryOutScope(const std::string& json, const std::function<std::string(recordings::Step)>& takeScopes);

/// Carries out what the page asks for, a JSON object with one of these members:
///   startScope, stopScope  name of a scope
///   boundary               name of a boundary; the member value has its new value
///   putBack                true: all boundaries get their first values again
///
/// Call it on the thread of the session. `takeScopes` plays a step that starts or stops scopes, and returns why it is
/// refused, or nothing.
OrderAnswer carryOut(const std::string& json, session::LiveView& view,
                     const std::function<std::string(recordings::Step)>& takeScopes);

}  // namespace KV::tools
