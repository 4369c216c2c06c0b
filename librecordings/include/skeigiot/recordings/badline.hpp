#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/recordings/error.hpp>

namespace KV::recordings
{

/// One line of the input cannot be used; the reader can go on with the next.
class SKEIGIOT_API BadLine : public Error
{
public:
  using Error::Error;
};

}  // namespace KV::recordings
