# Builds for 64-bit Windows by the mingw-w64 compiler of Debian, runs what it built by Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(prefix x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${prefix}-gcc-posix)
set(CMAKE_CXX_COMPILER ${prefix}-g++-posix)
set(CMAKE_RC_COMPILER ${prefix}-windres)
set(CMAKE_RC_FLAGS_INIT "-c 65001")

# The libraries that ./lvx build windows made of their sources, Qt where it is made, then those of the tool chain itself.
get_filename_component(LVX_WINDOWS_LIBRARIES "${CMAKE_CURRENT_LIST_DIR}/../../build/windows-libraries/installed" ABSOLUTE)
get_filename_component(LVX_WINDOWS_QT "${CMAKE_CURRENT_LIST_DIR}/../../build/windows-qt/installed" ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH "${LVX_WINDOWS_LIBRARIES}" "${LVX_WINDOWS_QT}" /usr/${prefix})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} "${LVX_WINDOWS_LIBRARIES}/lib/pkgconfig")

# Windows has no run-time libraries of this compiler: every program and library brings its own.
foreach(kind IN ITEMS EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
endforeach()

set(CMAKE_CROSSCOMPILING_EMULATOR "env;LVX_WINEPREFIX=${CMAKE_CURRENT_LIST_DIR}/../../build/wineprefix;${CMAKE_CURRENT_LIST_DIR}/wine-run")
