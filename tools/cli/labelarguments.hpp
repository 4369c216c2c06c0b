#pragma once

#include "cli/messages.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementoptions.hpp>

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Heading of the options on labels in the help.
extern const char* const labelGroup;

/// Adds the options that say what labels of coders mean; the target must outlive the command.
void addLabelOptions(CLI::App& command, session::AgreementOptions& agreement);

/// Reads files of labels, and notes their warnings.
///
/// \throws Error if one cannot be read.
std::vector<recordings::Labels> readLabelFiles(const std::vector<std::string>& paths, Messages& messages);

}  // namespace KV::tools
