# Toolchain of the i386 preset: the machine's own compiler with -m32 (Debian: g++-multilib), and the i386 packages of
# the foreign architecture for what the platform layer and the compiler need (libinih-dev:i386, libutf8proc-dev:i386).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT "-m32")
set(CMAKE_CXX_FLAGS_INIT "-m32")
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
# Tests run on the machine itself; without this CTest would look for an emulator.
set(CMAKE_CROSSCOMPILING_EMULATOR "")
