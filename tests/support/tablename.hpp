#pragma once

#include <gtest/gtest.h>

#include <string>

namespace support
{

/// Names each row of a table of cases after its field `name`.
struct RowName
{
  template <typename Case>
  std::string operator()(const ::testing::TestParamInfo<Case>& info) const
  {
    return info.param.name;
  }
};

}  // namespace support
