# arm64 Linux with Debian's cross compiler; test programs run through qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_FIND_ROOT_PATH /usr/aarch64-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest runs every test program through this; the -L prefix supplies the arm64 loader and libc.
# The arm64 Android log library pulls Debian's multiarch arm64 libc into /usr/lib/aarch64-linux-gnu,
# which the loader would otherwise find through the host's ld.so.cache: a loader and a libc from
# two builds of glibc, under which fork() never returns in the child. LD_LIBRARY_PATH=/lib (inside
# the prefix) keeps the loader and libc of the cross toolchain together.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L /usr/aarch64-linux-gnu -E LD_LIBRARY_PATH=/lib)
