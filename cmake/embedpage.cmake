# Writes a source file with a function that returns a page.
#
# usage: cmake -D PAGE=FILE -D OUTPUT=FILE -D HEADER=HEADER -D NAMESPACE=NAMESPACE -D FUNCTION=NAME -P embedpage.cmake
#   PAGE: may be empty
#   HEADER: declares `std::string_view NAMESPACE::NAME()`
file(READ "${PAGE}" bytes HEX)
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
string(REGEX REPLACE "(('....',)('....',)('....',)('....',)('....',)('....',)('....',)('....',))" "\\1\n" bytes "${bytes}")
file(WRITE "${OUTPUT}" "// Made from a page of web/.

#include \"${HEADER}\"

#include <cstddef>

namespace ${NAMESPACE}
{

namespace
{

constexpr char page[] = {${bytes}'\\0'};

}  // namespace

std::string_view ${FUNCTION}()
{
  return {page, sizeof(page) - 1};
}

}  // namespace ${NAMESPACE}
")
