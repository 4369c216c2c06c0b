# Headers of other libraries, read once for all sources of a target instead of once in each: they take most of the time of
# compiling a source. Only on request, since a source that forgets an include compiles nonetheless; packages, clang-tidy and
# everyday builds read each source by itself.
option(SKEIGIOT_PRECOMPILED_HEADERS "Read the headers of other libraries once for each target: quicker to build as a whole" OFF)

set(skeigiot_boost_headers <boost/chrono/duration.hpp> <boost/optional/optional.hpp> <boost/thread/lock_guard.hpp>
                           <boost/thread/mutex.hpp>)

# Gives the target Boost's headers, which the interface of the libraries needs everywhere, and the named headers.
function(skeigiot_precompile_headers target)
  if(SKEIGIOT_PRECOMPILED_HEADERS)
    target_precompile_headers(${target} PRIVATE ${skeigiot_boost_headers} ${ARGN})
  endif()
endfunction()
