# Builds for the appliance, a 32-bit ARM Linux, on another Debian machine: Debian's cross compiler, armhf
# libraries in a folder of their own, and qemu to run the tests.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L /usr/arm-linux-gnueabihf)

get_filename_component(sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/arm-sysroot ABSOLUTE)
execute_process(
  COMMAND ${CMAKE_CURRENT_LIST_DIR}/../tools/arm-sysroot ${sysroot}
  COMMAND_ERROR_IS_FATAL ANY)

# The compiler has a C library of its own: only other libraries come from the folder.
set(CMAKE_FIND_ROOT_PATH ${sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${sysroot}/usr/lib/arm-linux-gnueabihf/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${sysroot})
