#pragma once

#include "agreement/course.hpp"

#include <cstdint>
#include <map>
#include <string>

namespace KV::session
{

/// One of two sides that are compared, with its course for each person.
struct Side
{
  std::string name;
  std::map<std::int32_t, Course> courses;
  int between = NoLabel;  ///< its class where its course has no piece: a class, or NoLabel
};

}  // namespace KV::session
