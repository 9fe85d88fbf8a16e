# The library, made of the objects of all modules, and a static one of the same objects for tests and benchmarks, which use
# internal headers.
get_property(modules GLOBAL PROPERTY moktex_modules)
set(objects "")
foreach(module IN LISTS modules)
    list(APPEND objects $<TARGET_OBJECTS:${module}>)
endforeach()

add_library(MOKTexLib ${objects})
add_library(MOKTexLib::MOKTexLib ALIAS MOKTexLib)
target_compile_features(MOKTexLib PUBLIC cxx_std_20)
target_include_directories(MOKTexLib PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/MOKTexLib>)
set_target_properties(MOKTexLib PROPERTIES LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
get_property(module_libraries GLOBAL PROPERTY moktex_module_libraries)
target_link_libraries(MOKTexLib PRIVATE $<BUILD_INTERFACE:moktex_settings> ${module_libraries})
if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(MOKTexLib PUBLIC MOKTEX_STATIC)
elseif(WIN32)
    set_target_properties(MOKTexLib PROPERTIES PREFIX "")
else()
    # Hides the weak symbols of standard containers.
    set(version_script ${PROJECT_SOURCE_DIR}/cmake/exported_symbols.map)
    target_link_options(MOKTexLib PRIVATE -Wl,--version-script=${version_script} -Wl,--no-undefined)
    set_target_properties(MOKTexLib PROPERTIES LINK_DEPENDS ${version_script})
endif()

add_library(moktex_internal STATIC EXCLUDE_FROM_ALL ${objects})
set_target_properties(moktex_internal PROPERTIES LINKER_LANGUAGE CXX)
target_include_directories(moktex_internal PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_definitions(moktex_internal PUBLIC MOKTEX_STATIC)
target_link_libraries(moktex_internal PUBLIC moktex_settings ${module_libraries})
