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
