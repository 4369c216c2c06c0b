#pragma once

#include <skeigiot/api.hpp>

#include <string>

namespace KV::session
{

/// The name of a session in exports.
struct SKEIGIOT_API SessionName
{
  int number = 1;    ///< of the session in the export, from 1
  std::string file;  ///< the recording: its path below the folder that was named, or as it was given
};

}  // namespace KV::session
