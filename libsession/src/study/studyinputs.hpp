#pragma once

#include <skeigiot/recordings/labels.hpp>
#include <skeigiot/session/sessionplan.hpp>
#include <skeigiot/session/studyplan.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace KV::session
{

/// Returns the path of a file of the study, for opening it.
std::string pathIn(const Study& study, const std::string& path);

/// Returns the text with the paths of files of the study relative to its folder, so that it does not depend on where
/// the study is.
std::string withoutFolder(const Study& study, std::string text);

/// Returns the files of the session, for opening them.
SessionInputs inputsOf(const Study& study, const StudySession& session);

/// Opens the files of a session as one recording.
///
/// \throws recordings::Error if one cannot be read.
std::unique_ptr<recordings::Reader> openStudySession(const Study& study, const StudySession& session);

/// Reads labels of a session as scopes, as `skeigiot replay --scopes` does. A file without any label has no scope.
///
/// \param warnings  where warnings are added, with the path
/// \throws recordings::Error if the file cannot be read, or has no label with a duration in the tier.
std::vector<ScopeSpan> scopesOf(const Study& study, const Study::Input& labels, std::vector<std::string>& warnings);

/// Returns how large the files of a session are together; 0 for files that do not exist.
std::uintmax_t bytesOf(const Study& study, const StudySession& session);

}  // namespace KV::session
