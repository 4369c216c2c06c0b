#pragma once

#include "study/database.hpp"

#include <skeigiot/session/studyresults.hpp>

namespace KV::session
{

/// Gives other code of this library the tables of results.
class ResultsReader
{
public:
  /// Returns the database with all tables; valid as long as the results.
  static Database& database(const StudyResults& results);
};

}  // namespace KV::session
