# Where things are installed: GNUInstallDirs, with the libraries in lib/<architecture> on Debian. There the loader and
# the compilers look below /usr and /usr/local alike, and the libraries of both word sizes stand beside each other.
# (GNUInstallDirs itself does so for the prefix /usr of a native build only.)
if(NOT DEFINED CMAKE_INSTALL_LIBDIR AND CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Object code libraries")
endif()
include(GNUInstallDirs)
set(QEADRS_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/qeadrs) # the folder that hosts name to their compiler
