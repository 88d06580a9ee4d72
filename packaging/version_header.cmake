# Run at every build (cmake -P): writes OUTPUT, a header defining
# KASKADE_VERSION, only when the version changed, so that a new commit
# rebuilds what prints the version and nothing else.
#   cmake -DSOURCE_DIR=... -DPROJECT_VERSION=... -DOUTPUT=... -P version_header.cmake
include(${CMAKE_CURRENT_LIST_DIR}/version.cmake)
kaskade_full_version(${SOURCE_DIR} ${PROJECT_VERSION} version)
set(text "// Generated at build time by packaging/version_header.cmake.\n#pragma once\n#define KASKADE_VERSION \"${version}\"\n")
set(old "")
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} old)
endif()
if(NOT old STREQUAL text)
  file(WRITE ${OUTPUT} "${text}")
endif()
