# One object library per folder.
#   moktex_module(NAME SOURCE...)
function(moktex_module name)
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
