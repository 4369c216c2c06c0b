# Completes what CPack has installed for each package, before it packs it: strips libraries and programs, compresses
# manual pages, adds copyright, changes and overrides of lintian, and derives the files `symbols` and `shlibs`.

set(packaging ${CMAKE_CURRENT_LIST_DIR})
set(control ${CPACK_SKEIGIOT_CONTROL_FOLDER})
set(version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

set(for_all_to_read OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The same bytes for the same contents: the result contains neither name nor time.
function(compress file target)
  execute_process(COMMAND gzip -9 -n -c ${file} OUTPUT_FILE ${target} COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD ${target} PERMISSIONS ${for_all_to_read})
endfunction()

function(strip_binaries stage)
  set(unneeded --remove-section=.comment --remove-section=.note)
  file(GLOB_RECURSE archives ${stage}/usr/lib/*.a)
  file(GLOB_RECURSE libraries ${stage}/usr/lib/*.so*)
  file(GLOB programs ${stage}/usr/bin/*)
  foreach(file IN LISTS archives)
    run(strip --strip-debug --enable-deterministic-archives ${unneeded} ${file})
  endforeach()
  foreach(file IN LISTS libraries)
    if(NOT IS_SYMLINK ${file})
      run(strip --strip-unneeded ${unneeded} ${file})
    endif()
  endforeach()
  foreach(file IN LISTS programs)
    run(strip ${unneeded} ${file})
  endforeach()
endfunction()

function(compress_manual_pages stage)
  file(GLOB pages ${stage}/usr/share/man/man*/*.[1-9])
  foreach(page IN LISTS pages)
    compress(${page} ${page}.gz)
    file(REMOVE ${page})
  endforeach()
endfunction()

function(add_documents stage package)
  set(documents ${stage}/usr/share/doc/${package})
  file(COPY ${packaging}/copyright DESTINATION ${documents} FILE_PERMISSIONS ${for_all_to_read})
  compress(${packaging}/changelog ${documents}/changelog.Debian.gz)
  compress(${packaging}/../CHANGELOG.md ${documents}/changelog.gz)
  if(EXISTS ${packaging}/overrides/${package})
    file(COPY ${packaging}/overrides/${package} DESTINATION ${stage}/usr/share/lintian/overrides
         FILE_PERMISSIONS ${for_all_to_read})
  endif()
endfunction()

# On which package, of which version, a program depends that uses a library, or a symbol of it. A library whose interface is
# recorded stays compatible; for other libraries, only the same version is.
function(write_library_control stage package component)
  file(GLOB libraries ${stage}/usr/lib/*/lib*.so.[0-9])
  if(NOT libraries)
    return()
  endif()
  set(folder ${control}/${component})
  file(MAKE_DIRECTORY ${folder})
  set(needed "(= ${version})")
  if(EXISTS ${packaging}/${package}.symbols)
    set(needed "(>= ${CPACK_PACKAGE_VERSION})")
    list(TRANSFORM libraries PREPEND -e OUTPUT_VARIABLE each_library)
    run(dpkg-gensymbols -q -c1 -p${package} -v${CPACK_PACKAGE_VERSION} -P${stage} -I${packaging}/${package}.symbols
        -O${folder}/symbols ${each_library})
  endif()

  set(shlibs "")
  foreach(library IN LISTS libraries)
    cmake_path(GET library STEM name)
    string(REGEX MATCH "[0-9]+$" soversion ${library})
    string(APPEND shlibs "${name} ${soversion} ${package} ${needed}\n")
  endforeach()
  file(WRITE ${folder}/shlibs "${shlibs}")
endfunction()

execute_process(COMMAND dpkg-parsechangelog -l ${packaging}/changelog -S Version OUTPUT_VARIABLE changed_version
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT changed_version STREQUAL version)
  message(FATAL_ERROR "packaging/changelog ends at ${changed_version}, but the packages are ${version}")
endif()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} prefix)
  set(package ${CPACK_DEBIAN_${prefix}_PACKAGE_NAME})
  set(stage ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component})
  strip_binaries(${stage})
  compress_manual_pages(${stage})
  add_documents(${stage} ${package})
  write_library_control(${stage} ${package} ${component})
endforeach()
