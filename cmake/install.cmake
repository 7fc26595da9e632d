# Installed tree: headers, library, CMake package, pkg-config module, and what debuggers show values by.
include(CMakePackageConfigHelpers)

install(TARGETS krKGeneral EXPORT krKGeneralTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY moduls/dll_general/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/krKGeneral FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/krKGeneral)
install(EXPORT krKGeneralTargets NAMESPACE krKGeneral:: DESTINATION ${package_dir})
configure_package_config_file(cmake/krKGeneralConfig.cmake.in ${CMAKE_BINARY_DIR}/krKGeneralConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/krKGeneralConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/krKGeneralConfig.cmake ${CMAKE_BINARY_DIR}/krKGeneralConfigVersion.cmake
    DESTINATION ${package_dir})

# The module finds its tree from where it lies, so that an installed tree can be moved.
file(RELATIVE_PATH KAR_PREFIX_FROM_PC /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
list(JOIN KAR_EXACT_FLAGS " " KAR_EXACT_FLAGS_TEXT)
configure_file(cmake/krkgeneral.pc.in ${CMAKE_BINARY_DIR}/krkgeneral.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/krkgeneral.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# gdb loads a file of the library's name from beside the library, in the build tree as in an installed one, which can then be
# moved; or from the folder of its own for such files, which mirrors the system's tree and which it trusts.
if(NOT WIN32)
    set(gdb_script ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/libkrKGeneral.so.${PROJECT_VERSION}-gdb.py)
    configure_file(moduls/dll_general/debug/krkgeneral_gdb.py ${gdb_script} COPYONLY)
    install(CODE "
        set(libdir \"${CMAKE_INSTALL_LIBDIR}\")
        cmake_path(ABSOLUTE_PATH libdir BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
        if(\"\${CMAKE_INSTALL_PREFIX}\" STREQUAL \"/usr\")
            string(PREPEND libdir \"/usr/share/gdb/auto-load\")
        endif()
        file(INSTALL DESTINATION \"\${libdir}\" TYPE FILE FILES \"${gdb_script}\")" COMPONENT development)
endif()
install(FILES moduls/dll_general/debug/krkgeneral.natvis DESTINATION ${CMAKE_INSTALL_DATADIR}/krKGeneral COMPONENT development)
