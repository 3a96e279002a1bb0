# Two sets of compiler rules, linked by every target of the project and exported to nobody.

# Warnings. Errors only with the ci preset (CMAKE_COMPILE_WARNING_AS_ERROR is newer than our CMake).
option(ESTTFORM_WARNINGS_AS_ERRORS "Treat warnings as errors" OFF)
add_library(esttform_warnings INTERFACE)
target_compile_options(esttform_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wdouble-promotion -Wshadow
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>
  $<$<BOOL:${ESTTFORM_WARNINGS_AS_ERRORS}>:-Werror>)

# Floating point. Results are compared bit for bit: no contraction to fused operations, no reassociation.
add_library(esttform_float_rules INTERFACE)
target_compile_options(esttform_float_rules INTERFACE -ffp-contract=off -fno-fast-math)

# Guard zones around every buffer that the host gives a block.
option(ESTTFORM_GUARD_ZONES "Check guard zones after every callback (always on in Debug builds)" ${ESTTFORM_BUILD_TESTS})

# What every target of the project has: C++17, hidden symbols, the rules above.
function(esttform_target name)
  target_compile_features(${name} PRIVATE cxx_std_17 c_std_99)
  set_target_properties(${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden C_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    CXX_EXTENSIONS OFF C_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(${name} PRIVATE
    $<BUILD_INTERFACE:esttform_warnings> $<BUILD_INTERFACE:esttform_float_rules>)
endfunction()

# Compiles the C++ sources of each folder of a target as one, which reads large headers once a folder: half the time from
# nothing, with names that must differ within a folder. Off in the presets of those who change single files.
option(ESTTFORM_COMPILE_BY_FOLDER "Compile the sources of a folder as one" ON)
function(esttform_compile_by_folder name)
  get_target_property(sources ${name} SOURCES)
  foreach(source IN LISTS sources)
    string(REPLACE ${CMAKE_CURRENT_SOURCE_DIR}/ "" folder ${source})
    get_filename_component(folder ${folder} DIRECTORY)
    string(MAKE_C_IDENTIFIER "${name}/${folder}" group)
    set_source_files_properties(${source} TARGET_DIRECTORY ${name} PROPERTIES UNITY_GROUP ${group})
  endforeach()
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${ESTTFORM_COMPILE_BY_FOLDER} UNITY_BUILD_MODE GROUP)
endfunction()
