#pragma once

#include <skeigiot/recordings/recording.hpp>

#include <CLI/App.hpp>

#include <functional>
#include <memory>
#include <string>

namespace KV::tools
{

/// The arguments for reading recordings.
struct ReadingArguments
{
  recordings::ReadingOptions options;
  std::string format;    ///< name of the format; empty: detected
  bool skipBad = false;  ///< skip lines that cannot be used
};

/// Returns a function that opens a recording by the arguments, "-" being standard input; they must outlive it.
std::function<std::unique_ptr<recordings::Reader>(const std::string& path)> openerOf(const ReadingArguments& arguments);

/// Adds the options that fill in the arguments, which must outlive the command.
void addReadingOptions(CLI::App& command, ReadingArguments& arguments);

}  // namespace KV::tools
