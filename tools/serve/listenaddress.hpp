#pragma once

#include <string>

namespace KV::tools
{

/// Where a server listens.
struct ListenAddress
{
  std::string host = "127.0.0.1";  ///< a number, or localhost
  int port = 0;                    ///< 0: any that is free
};

/// Reads "HOST" or "HOST:PORT", such as "0.0.0.0:8080" or "[::1]:8080".
///
/// \throws std::invalid_argument if it is not that.
ListenAddress parseListenAddress(const std::string& text);

}  // namespace KV::tools
