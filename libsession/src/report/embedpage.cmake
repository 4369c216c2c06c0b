# Writes a source file that holds the page of the report.
#
# usage: cmake -D PAGE=FILE -D OUTPUT=FILE -P embedpage.cmake   the file of the page may be empty
file(READ "${PAGE}" bytes HEX)
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
string(REGEX REPLACE "(('....',)('....',)('....',)('....',)('....',)('....',)('....',)('....',))" "\\1\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "// Made from the page of the report.

#include \"report/reportpage.hpp\"

#include <cstddef>

namespace KV::session
{

namespace
{

constexpr char page[] = {${bytes}'\\0'};

}  // namespace

std::string_view reportTemplate()
{
  return {page, sizeof(page) - 1};
}

}  // namespace KV::session
")
