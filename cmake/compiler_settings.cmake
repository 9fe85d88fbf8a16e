# Language level, floating-point rules and warnings of every target of the project.
if(CMAKE_CXX_BYTE_ORDER STREQUAL "BIG_ENDIAN")
    message(FATAL_ERROR "MOKTexLib reads and writes little-endian data in place; it does not support big-endian processors.")
endif()

add_library(moktex_settings INTERFACE)
target_compile_features(moktex_settings INTERFACE cxx_std_20)
target_compile_options(moktex_settings INTERFACE
    # The same input gives the same bytes on every machine: no fused multiply-add, no reordering.
    -ffp-contract=off -fno-fast-math
    -Wall -Wextra -Wpedantic -Wshadow -Wcast-qual -Wdouble-promotion -Wold-style-cast
    # False warnings of g++ 12 about the inside of its own std::string and std::vector.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict$<SEMICOLON>-Wno-free-nonheap-object>)

# What Debian's own packages are built with. Windows programs get the linker's counterparts by default. Checks of buffer sizes need
# optimisation, and sanitizers have their own.
include(CheckPIESupported)
check_pie_supported()
if(NOT WIN32 AND NOT MOKTEX_SANITIZE)
    set(is_optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
    set(hardening -fstack-protector-strong -fstack-clash-protection -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
        list(APPEND hardening -fcf-protection)
    endif()
    target_compile_options(moktex_settings INTERFACE "$<${is_optimised}:${hardening}>")
    target_link_options(moktex_settings INTERFACE $<${is_optimised}:LINKER:-z,relro,-z,now>)
endif()

if(MOKTEX_WARNINGS_AS_ERRORS)
    target_compile_options(moktex_settings INTERFACE -Werror)
endif()
if(MOKTEX_SANITIZE)
    # False warnings of g++ 12, with sanitizers, about values in standard containers.
    target_compile_options(moktex_settings INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_compile_options(moktex_settings INTERFACE -fsanitize=${MOKTEX_SANITIZE} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    target_link_options(moktex_settings INTERFACE -fsanitize=${MOKTEX_SANITIZE})
endif()
if(MOKTEX_COVERAGE)
    target_compile_options(moktex_settings INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(moktex_settings INTERFACE --coverage)
endif()

# Compiles a file for one instruction set, which the library selects at run time. For processors other than x86-64 the file
# compiles to nothing.
#   moktex_kernel(FILE INSTRUCTION_SET)    INSTRUCTION_SET is SSE41 or AVX2
function(moktex_kernel file instruction_set)
    if(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
        return()
    endif()
    if(instruction_set STREQUAL "AVX2")
        set(options -mavx2)
        if(WIN32)
            # The stack is aligned to 16 bytes only; an aligned 32-byte store to it would fault.
            list(APPEND options -Wa,-muse-unaligned-vector-move)
        endif()
    elseif(instruction_set STREQUAL "SSE41")
        set(options -msse4.1)
    else()
        message(FATAL_ERROR "moktex_kernel: unknown instruction set ${instruction_set}")
    endif()
    set_source_files_properties(${file} PROPERTIES COMPILE_OPTIONS "${options}")
endfunction()
