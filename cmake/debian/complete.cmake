# Run by cpack between installing and packing: puts into each package the change logs, the copyright and the manual
# pages. Debian keeps them compressed, without the time of packing. No file for what is no Debian package.
if(NOT CPACK_GENERATOR STREQUAL DEB)
    return()
endif()
cmake_policy(VERSION 3.25)
set(file_mode OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(work ${CPACK_TOPLEVEL_DIRECTORY}/texts)
file(MAKE_DIRECTORY ${work})

# compressed(NAME): replaces the file of this name in the work folder by its compressed form.
function(compressed name)
    execute_process(COMMAND gzip -9nf ${work}/${name} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# The date honours SOURCE_DATE_EPOCH.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${work}/changelog.Debian
"${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}; changelog.gz beside this file tells what changed.

 -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${date}
")
compressed(changelog.Debian)
configure_file(${CPACK_KAR_SOURCE_DIR}/CHANGELOG.md ${work}/changelog COPYONLY)
compressed(changelog)

# The licence of the library as a paragraph of a copyright file: one space before each line, a dot on an empty one.
file(READ ${CPACK_KAR_SOURCE_DIR}/LICENSE licence)
string(REGEX MATCH "Copyright \\(c\\) ([^\n]*)" ignored "${licence}")
set(holder ${CMAKE_MATCH_1})
string(REGEX REPLACE "^.*Copyright[^\n]*\n\n" "" licence "${licence}")
string(STRIP "${licence}" licence)
string(REGEX REPLACE "\n\n" "\n.\n" licence "${licence}")
string(REGEX REPLACE "\n" "\n " licence " ${licence}")

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(root ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(copyright ${CPACK_KAR_SOURCE_DIR}/cmake/debian/copyright.in)
    if(component STREQUAL samples)
        set(copyright ${CPACK_KAR_SOURCE_DIR}/cmake/debian/copyright-samples.in)
    endif()
    configure_file(${copyright} ${work}/copyright @ONLY)
    file(COPY ${work}/changelog.Debian.gz ${work}/changelog.gz ${work}/copyright
        DESTINATION ${root}/share/doc/${package} FILE_PERMISSIONS ${file_mode})
endforeach()

# manual(PROGRAM PURPOSE): its manual page, made from what it tells of itself.
function(manual program purpose)
    execute_process(COMMAND help2man --no-info --name=${purpose} --version-string=${CPACK_PACKAGE_VERSION}
        --output=${work}/${program}.1 ./${program}
        WORKING_DIRECTORY ${CPACK_KAR_PROGRAM_DIR} COMMAND_ERROR_IS_FATAL ANY)
    compressed(${program}.1)
    file(COPY ${work}/${program}.1.gz DESTINATION ${CPACK_TEMPORARY_DIRECTORY}/samples/usr/share/man/man1
        FILE_PERMISSIONS ${file_mode})
endfunction()
if("samples" IN_LIST CPACK_COMPONENTS_ALL)
    manual(kartory-drawing "reads a DXF drawing, reports on it and draws it")
    manual(kartory-gallery "draws one picture of each operation of the krKGeneral library")
endif()

# Modes don't depend on the mask of who packs.
execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -type d -exec chmod 0755 {} + COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${work})
