# What `cpack` makes: a Debian package for each component, and the source archive.
get_target_property(so_version krKGeneral SOVERSION)
string(TOLOWER krKGeneral source_package)
set(runtime_package lib${source_package}${so_version})

set(CPACK_PACKAGE_NAME ${source_package})
set(CPACK_PACKAGE_VENDOR Kartory)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")          # each package has one of its own

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(KAR_BUILD_EXAMPLES)
    list(APPEND CPACK_COMPONENTS_ALL samples)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_SAMPLES_DEPENDS runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "general foundation library of Kartory
Points, boxes, space points, vectors and matrices; lines, arcs and ellipses
and their intersections; equation solvers and integration; strings, lists and
guarded memory; a controller for long operations. Results are the same bits
on every system.
.
This package holds the library that programs load.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME lib${source_package}-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "general foundation library of Kartory, for developers
Points, boxes, space points, vectors and matrices; lines, arcs and ellipses
and their intersections; equation solvers and integration; strings, lists and
guarded memory; a controller for long operations.
.
This package holds the headers, the CMake package and the pkg-config module.")

set(CPACK_DEBIAN_SAMPLES_PACKAGE_NAME kartory-drawing)
set(CPACK_DEBIAN_SAMPLES_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_SAMPLES_DESCRIPTION "reads DXF drawings, reports on them and draws them
Extents, lengths and colours of a drawing, every crossing of its lines, arcs,
ellipses and polylines, rounded and cut corners, feet of perpendiculars; the
results as a picture, a drawing or a table.
.
It is the sample program of the krKGeneral library. A second one,
kartory-gallery, draws one picture of each geometric operation.")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE ${source_package})
# Below the revision 1 that a distribution would give to a package of its own.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0kartory1)
# The names that Debian's tools take the packager from.
if(DEFINED ENV{DEBFULLNAME} AND DEFINED ENV{DEBEMAIL})
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
else()
    set(CPACK_DEBIAN_PACKAGE_MAINTAINER "krKGeneral developers <developers@krkgeneral.example>")
endif()
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)      # the exact version of the runtime package
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_SAMPLES_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)       # what other packages depend on that are linked with the library
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The trigger renews the cache of the loader. Two scripts that don't exist are named so that cpack writes none of its
# own, which would do it once more.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/cmake/debian/triggers none/postinst none/postrm)

# What Debian wants beside the installed tree: change logs, copyright, manual pages.
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/complete.cmake)
set(CPACK_KAR_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_KAR_PROGRAM_DIR ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})

# The source archive holds the tree as it lies, less what git and the builds keep in it.
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" source_dir "${PROJECT_SOURCE_DIR}")
set(CPACK_SOURCE_GENERATOR TXZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME ${source_package}-${PROJECT_VERSION})
set(CPACK_SOURCE_IGNORE_FILES "^${source_dir}/build/" "^${source_dir}/\\.git(/|$)")

include(CPack)
