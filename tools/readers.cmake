# The readers and the writer of recordings: the library `skeigiot-recordings`, for the command and its tests.

# Global: whatever links the library links these as well, in other folders too.
find_package(nlohmann_json 3.11 REQUIRED GLOBAL)
find_package(ZLIB REQUIRED GLOBAL)
find_path(LIBCSV_INCLUDE_DIR csv.h REQUIRED)
find_library(LIBCSV_LIBRARY csv REQUIRED)
mark_as_advanced(LIBCSV_INCLUDE_DIR LIBCSV_LIBRARY)

set(recording_sources
    # any recording
    inputfile.cpp
    quote.cpp
    recording.cpp
    recordingformats.cpp
    # from what a face analyser tells to readings
    actionunits.cpp
    viewingangles.cpp
    # OpenFace
    csvrows.cpp
    frametimes.cpp
    openfacecolumns.cpp
    openfacefile.cpp
    openfacereader.cpp
    openfacerow.cpp
    personsinview.cpp
    # JSON Lines
    jsonlinesreader.cpp
    jsonlineswriter.cpp
    observationjson.cpp)
list(TRANSFORM recording_sources PREPEND ${CMAKE_CURRENT_LIST_DIR}/)

add_library(skeigiot-recordings STATIC ${recording_sources})
skeigiot_configure_target(skeigiot-recordings)
target_include_directories(skeigiot-recordings PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_include_directories(skeigiot-recordings SYSTEM PRIVATE ${LIBCSV_INCLUDE_DIR})
target_link_libraries(skeigiot-recordings PUBLIC skeigiot::skeigiot
                                          PRIVATE nlohmann_json::nlohmann_json ZLIB::ZLIB ${LIBCSV_LIBRARY})
