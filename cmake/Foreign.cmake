# Compiles for another machine with Debian's cross compiler. OPCMODEL_MACHINE names it as GCC does, say
# s390x-linux-gnu; the libraries for it lie where Debian puts those of foreign machines. QEMU runs the programs, but for
# those that this machine runs itself.
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES OPCMODEL_MACHINE)
set(CMAKE_SYSTEM_NAME Linux)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR "${OPCMODEL_MACHINE}")
set(CMAKE_CXX_COMPILER ${OPCMODEL_MACHINE}-g++)
if(NOT CMAKE_SYSTEM_PROCESSOR STREQUAL "i686")
  set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR}-static)
endif()
string(REPLACE "i686" "i386" folder "${OPCMODEL_MACHINE}")
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${folder}/pkgconfig:/usr/share/pkgconfig)
