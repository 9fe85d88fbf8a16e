# Header-only libraries of the build machine: stb for pictures; for the tool also CLI11 for arguments and JSON for Modern C++.
# A cross compiler must not see the rest of /usr/include, so the build tree has symbolic links to these folders alone.
include_guard(GLOBAL)

set(host_header_links ${PROJECT_BINARY_DIR}/picture_headers)
file(MAKE_DIRECTORY ${host_header_links})

#   moktex_host_header(FOLDER HEADER PACKAGE)    FOLDER holds HEADER; PACKAGE is the Debian package to name if it is missing
function(moktex_host_header folder header package)
    find_path(MOKTEX_${folder}_PARENT ${folder}/${header} PATHS /usr/include /usr/local/include NO_CMAKE_FIND_ROOT_PATH
        DOC "Folder that holds ${folder}/${header} (Debian package ${package})")
    if(NOT MOKTEX_${folder}_PARENT)
        message(FATAL_ERROR "${folder}/${header} is missing: install ${package}, or switch off the tool, examples and benchmarks")
    endif()
    file(CREATE_LINK ${MOKTEX_${folder}_PARENT}/${folder} ${host_header_links}/${folder} SYMBOLIC)
endfunction()

moktex_host_header(stb stb_image.h libstb-dev)
if(MOKTEX_TOOL)
    moktex_host_header(CLI CLI.hpp libcli11-dev)
    moktex_host_header(nlohmann json.hpp nlohmann-json3-dev)
endif()

add_library(moktex_host_headers INTERFACE)
target_include_directories(moktex_host_headers SYSTEM INTERFACE ${host_header_links})
