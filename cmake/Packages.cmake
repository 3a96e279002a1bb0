# Debian packages, one of each component that has files: 'cpack' in the folder of the build, or its target 'package'.
# The preset 'package' sets what a package for Debian needs: the prefix /usr, hardening, no search paths in the files.
set(ESTTFORM_MAINTAINER "esttform maintainers <maintainers@esttform.example>" CACHE STRING "Who answers for the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${ESTTFORM_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/bin)
set(version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})

# Every package has its copyright file and the changes. They are for packages only: 'cmake --install' leaves them out.
set(package_dir ${PROJECT_BINARY_DIR}/package_files)
file(READ NOTICE notice)
configure_file(packaging/copyright.in ${package_dir}/copyright @ONLY)
configure_file(packaging/changelog.in ${package_dir}/changelog.Debian @ONLY)
get_target_property(abi blockhost SOVERSION)
configure_file(packaging/shlibs.in ${package_dir}/shlibs @ONLY)
file(COPY_FILE CHANGELOG.md ${package_dir}/changelog)
execute_process(COMMAND ${ESTTFORM_GZIP} -9nf changelog changelog.Debian
  WORKING_DIRECTORY ${package_dir} COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS NOTICE CHANGELOG.md)

# esttform_package(COMPONENT NAME SECTION SUMMARY DESCRIPTION [ALL] [DEPENDS list] [RECOMMENDS list] [SUGGESTS list]
#                  [CONTROL file...])
get_cmake_property(components COMPONENTS)
function(esttform_package component name section summary description)
  cmake_parse_arguments(ARG "ALL" "DEPENDS;RECOMMENDS;SUGGESTS" "CONTROL" ${ARGN})
  if(NOT component IN_LIST components)
    return()
  endif()
  install(FILES ${package_dir}/copyright ${package_dir}/changelog.gz ${package_dir}/changelog.Debian.gz
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
  string(TOUPPER ${component} key)
  if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/${name}.lintian-overrides)
    install(FILES packaging/${name}.lintian-overrides RENAME ${name}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${ARG_DEPENDS}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_RECOMMENDS "${ARG_RECOMMENDS}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SUGGESTS "${ARG_SUGGESTS}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA ${ARG_CONTROL} PARENT_SCOPE)
  if(ARG_ALL)
    set(CPACK_DEBIAN_${key}_PACKAGE_ARCHITECTURE all PARENT_SCOPE)
  endif()
endfunction()

esttform_package(program esttform science "${PROJECT_DESCRIPTION}"
  "Finds the rotation with scale, affine or projective transformation between
two pictures from matched points, wrong matches included.
.
The program estimates from files of matches, draws pictures and reports, and
writes C sources for devices. The package holds the library with the block,
too."
  RECOMMENDS esttform-vision SUGGESTS esttform-doc
  CONTROL ${package_dir}/shlibs ${PROJECT_SOURCE_DIR}/packaging/triggers)
esttform_package(vision esttform-vision science "Matches between two pictures, for esttform"
  "The part of the program esttform that starts from two pictures instead of
matched points: 'esttform register'. It needs OpenCV."
  DEPENDS "esttform (= ${version})")
esttform_package(development libesttform-dev libdevel "Estimation of 2-D transformations, files for development"
  "Headers of the class Estimator and of the code generator, the declarations
for those who write blocks, and the files for CMake and pkg-config."
  DEPENDS "esttform (= ${version})" SUGGESTS esttform-rt)
esttform_package(runtime esttform-rt libdevel "Runtime of the C code that esttform generates"
  "C sources and headers that generated code is compiled with. 'esttform
codegen' writes copies of them; this package is for projects that keep the
generated files alone."
  ALL)
esttform_package(documentation esttform-doc doc "Documentation and examples of esttform"
  "Pages on the program, the block and generated code, example programs, and
matches of points with their pictures."
  ALL)

# What python/ installs as component 'python', compiled for one version of Python.
if(Python_FOUND)
  set(python ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR})
  math(EXPR next ${Python_VERSION_MINOR}+1)
  esttform_package(python python3-esttform python "Estimation of 2-D transformations with NumPy"
    "The module esttform: estimates from arrays of matched points, streams of
them, and generated C sources."
    DEPENDS "esttform (= ${version}), python3 (>= ${python}), python3 (<< ${Python_VERSION_MAJOR}.${next}), python3-numpy"
    SUGGESTS "python3-distributed, python3-pandas, python3-matplotlib, python3-skimage"
    CONTROL ${PROJECT_SOURCE_DIR}/packaging/python/postinst ${PROJECT_SOURCE_DIR}/packaging/python/prerm)
endif()

include(CPack)
