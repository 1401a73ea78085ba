# Puts qe.ini in place when the libraries are installed, unless there is one: it is the administrator's from then on.
# Prefixes where the loader finds the libraries by itself get it where the profile library looks for it, in /etc; any
# other keeps it below itself, for QE_PROFILE.
# REQUIRES: QE_SYSCONFDIR, as configured.
set(QE_PROFILE_DIR ${QE_SYSCONFDIR})
if(NOT IS_ABSOLUTE "${QE_PROFILE_DIR}")
    if(QE_PROFILE_DIR STREQUAL "etc" AND CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?/?$")
        set(QE_PROFILE_DIR /etc)
    else()
        set(QE_PROFILE_DIR ${CMAKE_INSTALL_PREFIX}/${QE_PROFILE_DIR})
    endif()
endif()
if(EXISTS "$ENV{DESTDIR}${QE_PROFILE_DIR}/qe.ini")
    message(STATUS "Keeping: $ENV{DESTDIR}${QE_PROFILE_DIR}/qe.ini")
else()
    file(INSTALL ${CMAKE_CURRENT_LIST_DIR}/qe.ini DESTINATION ${QE_PROFILE_DIR})
endif()
