#pragma once

#include "cli/messages.hpp"

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/agreementoptions.hpp>
#include <skeigiot/session/scopespan.hpp>

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace KV::tools
{

/// Heading of the options on labels in the help.
extern const char* const labelGroup;

/// Adds the options for the meaning of coders' labels; the target must outlive the command.
void addLabelOptions(CLI::App& command, session::AgreementOptions& agreement);

/// The arguments on labels that are scopes.
struct ScopesArguments
{
  std::vector<std::string> files;  ///< "FILE" or "FILE:TIER"
  double offset = 0.;              ///< [s] added to all times of these labels
};

/// Adds "--scopes" and "--scopes-offset"; the target must outlive the command.
void addScopesOptions(CLI::App& command, ScopesArguments& scopes, const std::string& group);

/// Reads the files, and notes their warnings. Adds the scopes, and the paths to those that no output may replace.
///
/// \throws Error if a file cannot be read, or has no label that makes a scope.
void readScopes(const ScopesArguments& arguments, Messages& messages, std::vector<session::ScopeSpan>& scopes,
                std::vector<std::string>& paths);

/// Reads files of labels, and notes their warnings.
///
/// \throws Error if one cannot be read.
std::vector<recordings::Labels> readLabelFiles(const std::vector<std::string>& paths, Messages& messages);

}  // namespace KV::tools
