# Cross compiler for 64-bit Windows on a Debian host: MinGW-w64 with the posix
# thread model, because the win32 model of this GCC has no std::thread and
# std::mutex and Qt does not build with it.
#
#   cmake -S . -B <build> -G Ninja \
#       -DCMAKE_TOOLCHAIN_FILE=cmake/mingw_toolchain.cmake \
#       -DCMAKE_PREFIX_PATH="$(scripts/build_qt_windows)"

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
# Windows 10: the value is only informative with MinGW, but CMake and Qt expect
# one to be there.
set(CMAKE_SYSTEM_VERSION 10.0)

set(tarn_mingw_triplet x86_64-w64-mingw32)

set(CMAKE_C_COMPILER ${tarn_mingw_triplet}-gcc-posix)
set(CMAKE_CXX_COMPILER ${tarn_mingw_triplet}-g++-posix)
set(CMAKE_RC_COMPILER ${tarn_mingw_triplet}-windres)
set(CMAKE_AR ${tarn_mingw_triplet}-ar CACHE FILEPATH "Archiver")
set(CMAKE_RANLIB ${tarn_mingw_triplet}-ranlib CACHE FILEPATH "Archive indexer")
set(CMAKE_STRIP ${tarn_mingw_triplet}-strip CACHE FILEPATH "Symbol stripper")
set(CMAKE_OBJDUMP ${tarn_mingw_triplet}-objdump CACHE FILEPATH "Object dumper")

# Libraries, headers and packages come from the Windows side only; a header of
# the host that slips in would compile and then fail at run time. A prefix given
# on the command line counts as Windows side as well: CMake would otherwise look
# for it below the compiler's own root and never find it.
set(CMAKE_FIND_ROOT_PATH /usr/${tarn_mingw_triplet})
if(CMAKE_PREFIX_PATH)
    list(APPEND CMAKE_FIND_ROOT_PATH ${CMAKE_PREFIX_PATH})
endif()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# try_compile() projects read this file again, without the command line.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CMAKE_PREFIX_PATH)

# moc and rcc run on the host and come from the host's Qt.
if(NOT DEFINED QT_HOST_PATH)
    set(QT_HOST_PATH /usr CACHE PATH "Qt of the host, for moc and rcc")
endif()
