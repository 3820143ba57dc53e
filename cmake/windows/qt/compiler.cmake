# Qt for Windows by the compiler of the rest; its own libraries are not to be found by it.
include("${CMAKE_CURRENT_LIST_DIR}/../toolchain.cmake")
set(CMAKE_FIND_ROOT_PATH /usr/${prefix})
