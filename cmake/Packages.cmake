# Debian packages: the target `packages` makes them in the folder of that name, libqeadrs1, libqeadrs-dev and
# qeadrs-tools in a build folder of the release preset, the first two in one of the i386 preset. The same build makes
# the same bytes again. What stands in them is installed by the folders themselves, one component for each
# package; packaging/debian/ has what only Debian asks for, put in by Stage.cmake.
set(QEADRS_MAINTAINER "The qeadrs maintainers <maintainers@qeadrs.example>"
    CACHE STRING "Maintainer of the Debian packages")
find_program(DPKG_PARSECHANGELOG dpkg-parsechangelog)
if(NOT DPKG_PARSECHANGELOG OR NOT TARGET man)
    add_custom_target(packages
        COMMAND ${CMAKE_COMMAND} -E echo "The target packages needs dpkg-dev, and scdoc for the man pages."
        COMMAND false VERBATIM)
    return()
endif()

set(QE_DEBIAN ${PROJECT_SOURCE_DIR}/packaging/debian)
set(QE_DEBIAN_MADE ${PROJECT_BINARY_DIR}/debian)
file(READ ${PROJECT_SOURCE_DIR}/LICENSE QE_LICENSE)
string(REGEX REPLACE "^.*(Permission is hereby.*[^\n])\n*$" "\\1" QE_LICENSE "${QE_LICENSE}")
string(REPLACE "\n\n" "\n.\n" QE_LICENSE " ${QE_LICENSE}")
string(REPLACE "\n" "\n " QE_LICENSE "${QE_LICENSE}")
configure_file(${QE_DEBIAN}/copyright.in ${QE_DEBIAN_MADE}/copyright @ONLY)
configure_file(${QE_DEBIAN}/changelog.in ${QE_DEBIAN_MADE}/changelog @ONLY)
get_target_property(QE_SOVERSION qeadrs SOVERSION)
configure_file(${QE_DEBIAN}/shlibs.in ${QE_DEBIAN_MADE}/shlibs @ONLY)

# The version of a package and its date come from the head of Debian's changelog, never from the clock.
foreach(field Version Timestamp)
    execute_process(COMMAND ${DPKG_PARSECHANGELOG} -l ${QE_DEBIAN_MADE}/changelog -S${field}
        OUTPUT_VARIABLE QE_DEBIAN_${field} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endforeach()
string(REGEX REPLACE "^.*-" "" CPACK_DEBIAN_PACKAGE_RELEASE ${QE_DEBIAN_Version})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qeadrs)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_VENDOR "The qeadrs authors")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 1) # xz in one thread: the same bytes on every machine
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(QEADRS_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_PROJECT_CONFIG_FILE ${QE_DEBIAN_MADE}/Cpack.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${QE_DEBIAN_MADE}/Stage.cmake)
configure_file(${QE_DEBIAN}/Cpack.cmake.in ${QE_DEBIAN_MADE}/Cpack.cmake @ONLY)
configure_file(${QE_DEBIAN}/Stage.cmake.in ${QE_DEBIAN_MADE}/Stage.cmake @ONLY)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE qeadrs)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${QEADRS_MAINTAINER})
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(CMAKE_LIBRARY_ARCHITECTURE STREQUAL "i386-linux-gnu")
    set(QE_DEBIAN_ARCHITECTURE i386)
else()
    execute_process(COMMAND dpkg --print-architecture
        OUTPUT_VARIABLE QE_DEBIAN_ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endif()
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${QE_DEBIAN_ARCHITECTURE})

# qe_package(COMPONENT NAME SECTION SUMMARY DESCRIPTION): a component, and the package that it becomes.
macro(qe_package component name section summary description)
    string(TOUPPER ${component} QE_COMPONENT)
    set(CPACK_DEBIAN_${QE_COMPONENT}_DESCRIPTION "${summary}\n${description}")
    set(CPACK_DEBIAN_${QE_COMPONENT}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${QE_COMPONENT}_PACKAGE_SECTION ${section})
endmacro()
# The library and its headers stand beside those of another word size. CMake before 3.31 has no variable for that
# field; one that it writes as it is carries the line.
set(QE_MULTIARCH "\nMulti-Arch: same")

qe_package(runtime libqeadrs1 "libs${QE_MULTIARCH}" "Japanese postal addresses from one dictionary - library"
"libqeadrs answers questions about Japanese postal addresses from one read-only,
memory-mapped dictionary: the addresses of a postal code, the postal code of an
address, its latest form, the lists of prefectures, cities and towns, and the
candidates for a code or an address that is typed in part. libqetext reads
addresses as people write them, whatever they leave out and however they spell
it, and finds the place in the same dictionary.
.
This package has both libraries, the platform functions that they import, and
the profile that says where the dictionary is. The dictionary itself is
compiled from the official tables of Japan Post with the package qeadrs-tools.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS qeadrs-tools)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${QE_DEBIAN}/conffiles ${QE_DEBIAN}/triggers ${QE_DEBIAN_MADE}/shlibs ${QE_DEBIAN_MADE}/symbols)

qe_package(development libqeadrs-dev "libdevel${QE_MULTIARCH}"
    "Japanese postal addresses from one dictionary - development"
"libqeadrs answers questions about Japanese postal addresses from one read-only,
memory-mapped dictionary.
.
This package has the headers for C and C++ of libqeadrs and libqetext, both as
static libraries, the files by which pkg-config and CMake find them, the
description of the interfaces and of the dictionary's format, and example
programs.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqeadrs1 (= ${QE_DEBIAN_Version})")

qe_package(tools qeadrs-tools utils "Japanese postal addresses from one dictionary - tools"
"The command qeadrs looks Japanese postal addresses up: by postal code, by
address, by a part of either, level by level, or line by line as a filter. The
command qeadrs-dic fetches the official tables of Japan Post, compiles the
dictionary from them, checks it and shows it; qeadrs-update does all of that
every month, once its timer is switched on.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "libqeadrs1 (= ${QE_DEBIAN_Version}), adduser")
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS ca-certificates)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS skkdic-extra)
foreach(script postinst prerm postrm)
    configure_file(${QE_DEBIAN}/qeadrs-tools.${script} ${QE_DEBIAN_MADE}/${script} COPYONLY)
    list(APPEND CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA ${QE_DEBIAN_MADE}/${script})
endforeach()
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

include(CPack)

set(QE_PACKAGED qeadrs qeadrs_static qetext qetext_static qewin qeprof)
foreach(target qeadrs-cli qeadrs-dic qeadrs-completions qeadrs-dic-completions man)
    if(TARGET ${target})
        list(APPEND QE_PACKAGED ${target})
    endif()
endforeach()
# The user's umask would show in the packages.
add_custom_target(packages COMMAND sh -c "umask 022; exec \"$0\" -B packages" ${CMAKE_CPACK_COMMAND}
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR} DEPENDS ${QE_PACKAGED} USES_TERMINAL VERBATIM)
