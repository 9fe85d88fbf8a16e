# Fails unless a program of the build tree looks for libraries relative to itself alone, with its addresses bound at start-up in a
# release build.
execute_process(COMMAND ${READELF} -d ${PROGRAM} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "R(UN)?PATH\\)[^\n]*\\[[^\n]*\\]" paths "${dynamic}")
if(NOT paths MATCHES "\\[\\$ORIGIN/[^]:]+\\]$")
    message(FATAL_ERROR "The run path of ${PROGRAM} is ${paths}")
endif()
if(BUILD_TYPE STREQUAL "Release" AND NOT dynamic MATCHES "NOW")
    message(FATAL_ERROR "${PROGRAM} binds addresses late")
endif()
