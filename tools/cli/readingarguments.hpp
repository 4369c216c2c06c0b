#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <CLI/App.hpp>

#include <string>

namespace KV::tools
{

/// What the command line says of how recordings are read.
struct ReadingArguments
{
  recordings::ReadingOptions options;
  std::string format;    ///< name of the format; empty: found out
  bool skipBad = false;  ///< go on behind lines that cannot be used
};

/// Adds the options that fill in the arguments, which must outlive the command.
void addReadingOptions(CLI::App& command, ReadingArguments& arguments);

}  // namespace KV::tools
