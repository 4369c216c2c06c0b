#pragma once

#include "valueview.hpp"

namespace ko
{

/// Orders two objects by contents, as Value::compare() says.
int compare(ValueView left, ValueView right);

}  // namespace ko
