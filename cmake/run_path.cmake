# Where programs look for the shared library: relative to themselves, in the build tree and below any prefix. The build tree has
# the folders of the installed one, so that one run path serves both. CMake would otherwise pad the run path of a program that it
# installs with a colon, which means the current folder.
set(moktex_run_path "")
if(PROJECT_IS_TOP_LEVEL AND NOT WIN32 AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
    file(RELATIVE_PATH library_folder /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set(moktex_run_path $ORIGIN/${library_folder})
    cmake_path(ABSOLUTE_PATH library_folder BASE_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} NORMALIZE)
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${library_folder})
endif()
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

#   moktex_set_run_path(PROGRAM)    for a program that is installed
function(moktex_set_run_path program)
    if(moktex_run_path)
        set_target_properties(${program} PROPERTIES INSTALL_RPATH "${moktex_run_path}" BUILD_WITH_INSTALL_RPATH ON)
    endif()
endfunction()
