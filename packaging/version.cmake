# The version the show says it is (--version, the package names, the page):
# the project's version, and where the source is a git repository, what
# `git describe` says of its commit. On the commit tagged v1.0.0 it is
# "1.0.0"; three commits after that tag "1.0.0+3.g5a12098"; where no tag is,
# "1.0.0+g5a12098"; files changed since the commit add ".dirty". Every form
# is a valid Debian version and sorts after the plain project version.
#
#   kaskade_full_version(SOURCE_DIR PROJECT_VERSION OUT_VAR)

function(kaskade_full_version source_dir project_version out_var)
  set(version ${project_version})
  find_program(KASKADE_GIT git)
  if(KASKADE_GIT AND EXISTS ${source_dir}/.git)
    execute_process(
      COMMAND ${KASKADE_GIT} describe --tags --always --dirty=.dirty --match "v[0-9]*"
      WORKING_DIRECTORY ${source_dir}
      OUTPUT_VARIABLE described
      RESULT_VARIABLE failed
      ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT failed AND described)
      if(described MATCHES "^v${project_version}(\\.dirty)?$")
        if(CMAKE_MATCH_1)
          set(version "${project_version}+dirty")
        endif()
      elseif(described MATCHES "^v[^-]+-([0-9]+)-g([0-9a-f]+)(\\.dirty)?$")
        set(version "${project_version}+${CMAKE_MATCH_1}.g${CMAKE_MATCH_2}${CMAKE_MATCH_3}")
      elseif(described MATCHES "^([0-9a-f]+)(\\.dirty)?$")
        set(version "${project_version}+g${CMAKE_MATCH_1}${CMAKE_MATCH_2}")
      endif()
    endif()
  endif()
  set(${out_var} ${version} PARENT_SCOPE)
endfunction()
