# Fails unless the first C++ block of README is the text of EXAMPLE.
#
# usage: cmake -D README=... -D EXAMPLE=... -P readmeshowsexample.cmake

file(READ ${README} readme)
file(READ ${EXAMPLE} example)

string(FIND "${readme}" "```cpp\n" start)
if(start EQUAL -1)
  message(FATAL_ERROR "${README} has no C++ block")
endif()
math(EXPR start "${start} + 7")
string(SUBSTRING "${readme}" ${start} -1 rest)
string(FIND "${rest}" "```" end)
string(SUBSTRING "${rest}" 0 ${end} block)

if(NOT block STREQUAL example)
  message(FATAL_ERROR "The C++ block of ${README} is not ${EXAMPLE}:\n${block}")
endif()
