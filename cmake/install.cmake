# Installed tree: headers, library, CMake package, pkg-config module, what debuggers show values by, and the sample
# programs where they are built. What a program needs to run, what its maker needs and the samples are components, which
# a package may hold each for itself.
include(CMakePackageConfigHelpers)

install(TARGETS krKGeneral EXPORT krKGeneralTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(DIRECTORY moduls/dll_general/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/krKGeneral COMPONENT development
    FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/krKGeneral)
install(EXPORT krKGeneralTargets NAMESPACE krKGeneral:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/krKGeneralConfig.cmake.in ${CMAKE_BINARY_DIR}/krKGeneralConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/krKGeneralConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/krKGeneralConfig.cmake ${CMAKE_BINARY_DIR}/krKGeneralConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# The module finds its tree from where it lies, so that an installed tree can be moved.
file(RELATIVE_PATH KAR_PREFIX_FROM_PC /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
list(JOIN KAR_EXACT_FLAGS " " KAR_EXACT_FLAGS_TEXT)
configure_file(cmake/krkgeneral.pc.in ${CMAKE_BINARY_DIR}/krkgeneral.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/krkgeneral.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# gdb loads a file of the library's name from beside the library, in the build tree as in an installed one, which can
# then be moved; or from the system's folder of such files, which mirrors the paths of libraries and which it trusts.
if(NOT WIN32)
    set(gdb_script ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libkrKGeneral.so.${PROJECT_VERSION}-gdb.py)
    configure_file(moduls/dll_general/debug/krkgeneral_gdb.py ${gdb_script} COPYONLY)
    install(CODE "
        set(folder \"${CMAKE_INSTALL_LIBDIR}\")
        if(CMAKE_INSTALL_PREFIX MATCHES \"/usr$\") # a package's, perhaps not yet in its place
            set(folder \"share/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR}\")
        endif()
        file(INSTALL DESTINATION \"\${CMAKE_INSTALL_PREFIX}/\${folder}\" TYPE FILE FILES \"${gdb_script}\")"
        COMPONENT development)
endif()
install(FILES moduls/dll_general/debug/krkgeneral.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/krKGeneral
    COMPONENT development)

if(KAR_BUILD_EXAMPLES)
    # The programs find the library beside them wherever the tree lies; packages leave that to the system.
    file(RELATIVE_PATH KAR_LIBRARY_FROM_BIN /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
    set_target_properties(kartory-drawing kartory-gallery PROPERTIES INSTALL_RPATH "$ORIGIN/${KAR_LIBRARY_FROM_BIN}")
    install(TARGETS kartory-drawing kartory-gallery DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT samples)
    install(DIRECTORY examples/drawing/samples DESTINATION ${CMAKE_INSTALL_DATADIR}/kartory-drawing COMPONENT samples
        FILES_MATCHING PATTERN "*.dxf")
endif()
