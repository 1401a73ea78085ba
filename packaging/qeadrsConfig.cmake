# find_package(qeadrs): the targets qeadrs::qeadrs (the library; it brings qeadrs::platform with it), qeadrs::platform
# (the platform functions, to free result blocks with), qeadrs::static (the library to link into a program), qeadrs::text
# (addresses as people write them; it brings qeadrs::qeadrs with it) and qeadrs::text_static.
include(${CMAKE_CURRENT_LIST_DIR}/qeadrsTargets.cmake)
