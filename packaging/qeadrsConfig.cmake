# find_package(qeadrs): the targets qeadrs::qeadrs (the library; it brings qeadrs::platform with it), qeadrs::platform
# (the platform functions, to free result blocks with) and qeadrs::static (the library to link into a program).
include(${CMAKE_CURRENT_LIST_DIR}/qeadrsTargets.cmake)
