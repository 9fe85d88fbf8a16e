# One object library per folder.
#   moktex_module(NAME SOURCE...)
# In a unity build (CMAKE_UNITY_BUILD, as in scripts/build-moktex) several sources of a module are compiled as one, so names in
# their unnamed namespaces must differ. Files that hold the same functions for several instruction sets are compiled alone.
function(moktex_module name)
    foreach(source IN LISTS ARGN)
        if(source MATCHES "_(scalar|plain|sse2|sse41|avx2)\\.cpp$")
            set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
        endif()
    endforeach()
    add_library(moktex_${name} OBJECT ${ARGN})
    target_link_libraries(moktex_${name} PRIVATE moktex_settings)
    target_include_directories(moktex_${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(moktex_${name} PRIVATE
        $<IF:$<BOOL:${BUILD_SHARED_LIBS}>,MOKTEX_BUILDING_LIBRARY,MOKTEX_STATIC>)
    set_target_properties(moktex_${name} PROPERTIES
        CXX_EXTENSIONS OFF
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    set_property(GLOBAL APPEND PROPERTY moktex_modules moktex_${name})
endfunction()
