# One function per kind of target. A folder is a target is a part of the namespace:
#
#   lvx_library(framework FOLDER src/framework SOURCES a.cpp PUBLIC dep PRIVATE dep)
#
# makes the static library lvx_framework (alias lvx::framework) whose headers are included as "framework/a.h" - and only
# by targets that link it, since each library brings an include directory that holds its own folder and no other, and of
# that folder all but its detail/. A wrong include therefore fails to build, and so does a second target on a folder.

include_guard(GLOBAL)

# Flags that every target of the project shares.
add_library(lvx_flags INTERFACE)
target_compile_features(lvx_flags INTERFACE cxx_std_20)
# Fused multiply-add is off so that golden files agree on all machines.
target_compile_options(lvx_flags INTERFACE -ffp-contract=off)
if(LVX_WARNINGS_AS_ERRORS)
  target_compile_options(lvx_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast
                                             -Wcast-align -Woverloaded-virtual -Wnull-dereference -Werror
                                             # When it optimises, GCC 12 sees null pointers and endless comparisons inside
                                             # std::vector, overlapping copies inside std::string (its bug 105651).
                                             "$<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-Wno-null-dereference;-Wno-restrict;-Wno-stringop-overread>")
endif()
# Where several sources are compiled at once, their own names meet, and what a source of its own is warned of is none.
set(together -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
if(CMAKE_UNITY_BUILD)
  target_compile_options(lvx_flags INTERFACE ${together})
endif()
if(WIN32)
  # Only definition files say what is exported there, so a name's visibility means nothing.
  target_compile_options(lvx_flags INTERFACE -Wno-attributes)
  # The linker writes no time, so that the same sources make the same bytes.
  target_link_options(lvx_flags INTERFACE -Wl,--no-insert-timestamp)
  # Sections begin at pages, as in memory: Wine maps such a file and reads no page that isn't used; else it copies the whole.
  target_link_options(lvx_flags INTERFACE -Wl,--file-alignment,4096)
  # Of a system's header only what is asked for by name, without macros called min and max, for Windows 10.
  target_compile_definitions(lvx_flags INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
  include("${CMAKE_CURRENT_LIST_DIR}/windows/delayed_libraries.cmake")
  lvx_delay_libraries(lvx_flags)
endif()
if(LVX_SANITIZE)
  target_compile_options(lvx_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
  target_link_options(lvx_flags INTERFACE -fsanitize=address,undefined)
  # Under the sanitizers GCC 12 takes moved-from members of its own library for uninitialised.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(lvx_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(LVX_BUILD_FUZZ)
  # The fuzzer steers by what it reaches in every library, not only in its own file.
  target_compile_options(lvx_flags INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(lvx_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(LVX_SANITIZE_THREADS)
  target_compile_options(lvx_flags INTERFACE -fsanitize=thread)
  target_link_options(lvx_flags INTERFACE -fsanitize=thread)
  # It knows no memory order of its own for fences.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(lvx_flags INTERFACE -Wno-tsan)
  endif()
endif()
if(LVX_SOURCE_COVERAGE)
  target_compile_options(lvx_flags INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(lvx_flags INTERFACE -fprofile-instr-generate)
endif()
if(LVX_COVERAGE)
  target_compile_options(lvx_flags INTERFACE --coverage -O0)
  target_link_options(lvx_flags INTERFACE --coverage)
endif()

# Flags of tests, after those that every target shares. Compiling them takes longer than running them, so their own code is
# optimised less than what it tests; and the sanitizers watch what it does to memory, not each of its sums.
add_library(lvx_test_flags INTERFACE)
target_compile_options(lvx_test_flags INTERFACE $<$<CONFIG:Release>:-O1> ${together})
if(LVX_SANITIZE)
  target_compile_options(lvx_test_flags INTERFACE -O0 -fno-sanitize=undefined)
endif()

# Where a folder's headers are included from: its path below the first level of the tree ("standin/desktop/plan" is
# included as "desktop/plan/…"). AS names another path, for a folder that would share it with a different one.
function(_lvx_include_path folder result)
  string(FIND "${folder}" "/" slash)
  math(EXPR first "${slash} + 1")
  string(SUBSTRING "${folder}" ${first} -1 path)
  set(${result} "${path}" PARENT_SCOPE)
endfunction()

# Two include directories for a folder, each of which holds this folder and no other: one that shows all of it, for its
# own sources, and one without its detail/, for everybody else. Gives their roots.
function(_lvx_include_roots target folder path inside outside)
  set(own "${PROJECT_BINARY_DIR}/include/${target}/inside")
  get_filename_component(parent "${own}/${path}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  if(NOT EXISTS "${own}/${path}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}" "${own}/${path}" SYMBOLIC)
  endif()

  set(shown "${PROJECT_BINARY_DIR}/include/${target}/outside")
  file(MAKE_DIRECTORY "${shown}/${path}")
  # A header, or a folder that is neither detail nor a target of its own.
  file(GLOB entries CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/${folder}/*.h" "${PROJECT_SOURCE_DIR}/${folder}/*/*.h")
  set(names)
  foreach(entry IN LISTS entries)
    file(RELATIVE_PATH entry "${PROJECT_SOURCE_DIR}/${folder}" "${entry}")
    string(REGEX REPLACE "/.*" "" name "${entry}")
    if(NOT name STREQUAL "detail" AND NOT EXISTS "${PROJECT_SOURCE_DIR}/${folder}/${name}/CMakeLists.txt")
      list(APPEND names "${name}")
    endif()
  endforeach()
  list(REMOVE_DUPLICATES names)
  foreach(name IN LISTS names)
    if(NOT EXISTS "${shown}/${path}/${name}")
      file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}/${name}" "${shown}/${path}/${name}" SYMBOLIC)
    endif()
  endforeach()
  file(GLOB links RELATIVE "${shown}/${path}" "${shown}/${path}/*")
  foreach(name IN LISTS links)
    if(NOT name IN_LIST names)
      file(REMOVE "${shown}/${path}/${name}")
    endif()
  endforeach()
  set(${inside} "${own}" PARENT_SCOPE)
  set(${outside} "${shown}" PARENT_SCOPE)
endfunction()

# Builds that check compile several sources of a target at once (CMAKE_UNITY_BUILD of the presets), which takes half the
# time. Sources here have names of their own that others of the target use for something else, and stay alone. The release
# build compiles every source of what users run by itself, so that each includes what it needs.
function(_lvx_compile_alone)
  if(ARGN)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# The static library lvx_NAME of a folder. INCLUDE names further folders that its own sources may include (pictures). ALONE
# names sources that are never compiled together with others.
function(lvx_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "FOLDER;AS" "SOURCES;ALONE;PUBLIC;PRIVATE;INCLUDE")
  _lvx_compile_alone(${arg_ALONE})
  set(target lvx_${name})
  get_property(taken GLOBAL PROPERTY "LVX_FOLDER_${arg_FOLDER}")
  if(taken)
    message(FATAL_ERROR "${arg_FOLDER} is the target ${taken} already: one folder is one target, so ${target} needs another")
  endif()
  set_property(GLOBAL PROPERTY "LVX_FOLDER_${arg_FOLDER}" ${target})

  set(path "${arg_AS}")
  if(NOT path)
    _lvx_include_path("${arg_FOLDER}" path)
  endif()
  _lvx_include_roots(${target} "${arg_FOLDER}" "${path}" inside outside)
  if(arg_SOURCES OR arg_ALONE)
    add_library(${target} STATIC ${arg_SOURCES} ${arg_ALONE})
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON LVX_INSIDE "${inside}")
    target_include_directories(${target} PRIVATE "${inside}" INTERFACE "${outside}")
    target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE lvx_flags ${arg_PRIVATE})
    foreach(folder IN LISTS arg_INCLUDE)
      _lvx_include_folder(${target} "${folder}")
    endforeach()
  else()
    add_library(${target} INTERFACE)
    set_target_properties(${target} PROPERTIES LVX_INSIDE "${inside}")
    target_include_directories(${target} INTERFACE "${outside}")
    target_link_libraries(${target} INTERFACE ${arg_PUBLIC})
    target_compile_features(${target} INTERFACE cxx_std_20)
  endif()
  add_library(lvx::${name} ALIAS ${target})
  set_property(GLOBAL APPEND PROPERTY LVX_LIBRARIES ${name})
  set_target_properties(${target} PROPERTIES LVX_FOLDER "${arg_FOLDER}" LVX_INCLUDED_AS "${path}")
endfunction()

# Writes libraries.txt for the tests of the tree itself: a line for each folder that is a target, with what its headers'
# names begin with in an include, and the include directories that a source of its own is compiled with, divided by tabs.
function(lvx_list_libraries)
  get_property(names GLOBAL PROPERTY LVX_LIBRARIES)
  set(lines)
  foreach(name IN LISTS names)
    get_target_property(folder lvx_${name} LVX_FOLDER)
    get_target_property(path lvx_${name} LVX_INCLUDED_AS)
    get_target_property(type lvx_${name} TYPE)
    set(property INCLUDE_DIRECTORIES)
    set(own)
    if(type STREQUAL "INTERFACE_LIBRARY")
      set(property INTERFACE_INCLUDE_DIRECTORIES)
      get_target_property(own lvx_${name} LVX_INSIDE)
    endif()
    string(APPEND lines "${folder}\t${path}\t${own}\t$<JOIN:$<TARGET_PROPERTY:lvx_${name},${property}>,\t>\n")
  endforeach()
  file(GENERATE OUTPUT "${PROJECT_BINARY_DIR}/libraries.txt" CONTENT "${lines}")
endfunction()

# Lets a target include a folder of data as "<last path component>/…".
function(_lvx_include_folder target folder)
  get_filename_component(name "${folder}" NAME)
  set(root "${PROJECT_BINARY_DIR}/include/${target}/data")
  file(MAKE_DIRECTORY "${root}")
  if(NOT EXISTS "${root}/${name}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${folder}" "${root}/${name}" SYMBOLIC)
  endif()
  target_include_directories(${target} PRIVATE "${root}")
endfunction()

# Lets a test or benchmark look into a library's detail/.
function(_lvx_look_inside target)
  foreach(library IN LISTS ARGN)
    get_target_property(inside lvx_${library} LVX_INSIDE)
    target_include_directories(${target} BEFORE PRIVATE "${inside}")
  endforeach()
endfunction()

function(lvx_executable name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE lvx_flags ${arg_LINK})
endfunction()

# A program that loads modules: they find their host in the process that they are in.
function(lvx_shows_host target)
  set_target_properties(${target} PROPERTIES ENABLE_EXPORTS ON)
  if(WIN32)
    target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/standin/accessor/host.def")
  endif()
endfunction()

# What a shared library shows: NAME.map tells it on systems with ELF, NAME.def on Windows.
function(lvx_exports target name)
  if(WIN32)
    target_sources(${target} PRIVATE "${name}.def")
  else()
    target_link_options(${target} PRIVATE "-Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/${name}.map")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${name}.map")
  endif()
endfunction()

# A library with Qt in it: its classes with Q_OBJECT pass Qt's own compiler.
function(lvx_qt_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "FOLDER" "SOURCES;ALONE;PUBLIC;PRIVATE")
  lvx_library(${name} FOLDER ${arg_FOLDER} SOURCES ${arg_SOURCES} ALONE ${arg_ALONE} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  set_target_properties(lvx_${name} PROPERTIES AUTOMOC ON)
  target_compile_definitions(lvx_${name} PUBLIC QT_NO_KEYWORDS PRIVATE QT_NO_CAST_TO_ASCII)
endfunction()

# One test program per area. Each of its tests becomes a test of CTest's; with WHOLE the program becomes one, for tests whose
# common start is dear, and writes a record of its tests by which ./lvx counts them. LABELS lets ./lvx pick (unit, golden,
# e2e). INSIDE names libraries whose detail/ it tests, ALONE sources that are never compiled together with others.
function(lvx_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "WHOLE" "LABELS;TIMEOUT" "SOURCES;ALONE;LINK;INSIDE;DEFINITIONS")
  _lvx_compile_alone(${arg_ALONE})
  list(APPEND arg_SOURCES ${arg_ALONE})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  if(NOT arg_LABELS)
    set(arg_LABELS unit)
  endif()
  set(target ${name}_test)
  add_executable(${target} ${arg_SOURCES})
  list(TRANSFORM arg_SOURCES PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/" OUTPUT_VARIABLE registered)
  set_property(GLOBAL APPEND PROPERTY LVX_TEST_SOURCES ${registered})
  target_link_libraries(${target} PRIVATE lvx_flags lvx_test_flags lvx::test_support ${arg_LINK} GTest::gmock)
  _lvx_look_inside(${target} ${arg_INSIDE})
  target_compile_definitions(${target} PRIVATE ${arg_DEFINITIONS})
  # The start of a program costs more there than most tests.
  if(arg_WHOLE OR WIN32)
    lvx_whole_test(${name} ${target} LABELS "${arg_LABELS}" TIMEOUT ${arg_TIMEOUT})
  else()
    gtest_discover_tests(${target} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES LABELS "${arg_LABELS}" TIMEOUT ${arg_TIMEOUT})
  endif()
endfunction()

# Registers one run of a test program with CTest as a whole. ENVIRONMENT and ARGUMENTS are those of this run.
function(lvx_whole_test name program)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "LABELS;TIMEOUT" "ENVIRONMENT;ARGUMENTS")
  add_test(NAME ${name} COMMAND ${program} --gtest_brief=1 ${arg_ARGUMENTS})
  set_tests_properties(${name} PROPERTIES LABELS "${arg_LABELS}" TIMEOUT ${arg_TIMEOUT}
    ENVIRONMENT "LVX_TEST_RECORD=${PROJECT_BINARY_DIR}/test-records/${name};${arg_ENVIRONMENT}")
  set_property(GLOBAL APPEND PROPERTY LVX_WHOLE_TESTS ${name})
endfunction()

# Lets a program print the compiler and the flags that it was built with.
function(_lvx_tell_build target)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" build_type)
  target_compile_definitions(${target} PRIVATE
    LVX_COMPILER="${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}"
    LVX_FLAGS="${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${build_type}} -ffp-contract=off")
endfunction()

# Each benchmark prints what it was built with.
function(lvx_bench name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK;INSIDE")
  add_executable(bench_${name} ${arg_SOURCES})
  target_link_libraries(bench_${name} PRIVATE lvx_flags ${arg_LINK})
  _lvx_look_inside(bench_${name} ${arg_INSIDE})
  _lvx_tell_build(bench_${name})
  target_compile_definitions(bench_${name} PRIVATE LVX_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
endfunction()

# A fuzz target is one file with LLVMFuzzerTestOneInput. With clang it is a libFuzzer program; with any compiler it is
# also linked with a plain driver that replays its seed corpus, so that the seeds run in every test run.
function(lvx_fuzz name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  set_property(GLOBAL APPEND PROPERTY LVX_FUZZ_NAMES ${name})
  if(LVX_BUILD_FUZZ)
    add_executable(fuzz_${name} ${arg_SOURCES})
    target_link_libraries(fuzz_${name} PRIVATE lvx_flags ${arg_LINK})
    target_compile_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  endif()
  if(LVX_BUILD_TESTS)
    add_executable(replay_${name} ${arg_SOURCES} ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
    target_link_libraries(replay_${name} PRIVATE lvx_flags ${arg_LINK})
    add_test(NAME fuzz_replay.${name} COMMAND replay_${name} ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
    set_tests_properties(fuzz_replay.${name} PROPERTIES LABELS fuzz)
  endif()
endfunction()

# Writes test-records.txt: the tests of CTest's that stand for a whole program each, one a line.
function(lvx_list_whole_tests)
  get_property(names GLOBAL PROPERTY LVX_WHOLE_TESTS)
  list(JOIN names "\n" text)
  file(WRITE "${PROJECT_BINARY_DIR}/test-records.txt" "${text}\n")
endfunction()

# Nothing lies in the tree that looks like a test and never runs: a test file in no lvx_test(), a golden case that no test
# names, a seed corpus without its fuzz target stop the configure step. Called once, after everything is registered.
function(lvx_check_registration)
  set(forgotten)
  if(LVX_BUILD_TESTS)
    get_property(registered GLOBAL PROPERTY LVX_TEST_SOURCES)
    file(GLOB tests CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/*/*_test.cpp")
    if(NOT LVX_BUILD_DESKTOP)
      list(FILTER tests EXCLUDE REGEX "/tests/desktop/")
    endif()
    if(LVX_SANITIZE OR LVX_SANITIZE_THREADS OR LVX_COVERAGE OR WIN32)
      list(FILTER tests EXCLUDE REGEX "/tests/(faults|package|reading_work|work)/")
    endif()
    if(WIN32)
      list(FILTER tests EXCLUDE REGEX "/tests/(landxml/safe_saving|cli/books)_test")
    else()
      list(FILTER tests EXCLUDE REGEX "/tests/windows/")
    endif()
    foreach(test IN LISTS tests)
      if(NOT test IN_LIST registered)
        list(APPEND forgotten "${test}: in no lvx_test()")
      endif()
    endforeach()

    # Two reports may have a case of the same name: a bare name counts for the report whose folder of tests names it.
    foreach(source IN LISTS registered)
      file(READ "${source}" text)
      get_filename_component(area "${source}" DIRECTORY)
      get_filename_component(area "${area}" NAME)
      string(APPEND texts_of_${area} "${text}")
      string(APPEND texts "${text}")
    endforeach()
    file(GLOB cases CONFIGURE_DEPENDS RELATIVE "${PROJECT_SOURCE_DIR}/tests/golden" "${PROJECT_SOURCE_DIR}/tests/golden/*/*")
    foreach(case IN LISTS cases)
      get_filename_component(report "${case}" DIRECTORY)
      get_filename_component(name "${case}" NAME)
      if(NOT "${texts_of_${report}}" MATCHES "\"${name}[\"/]" AND NOT "${texts}" MATCHES "[\"/]${case}[\"/]")
        list(APPEND forgotten "tests/golden/${case}: named by no test of ${report}")
      endif()
    endforeach()
  endif()

  get_property(targets GLOBAL PROPERTY LVX_FUZZ_NAMES)
  file(GLOB corpora CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/fuzz/corpus/*")
  foreach(corpus IN LISTS corpora)
    get_filename_component(name "${corpus}" NAME)
    if((LVX_BUILD_TESTS OR LVX_BUILD_FUZZ) AND NOT name IN_LIST targets)
      list(APPEND forgotten "${corpus}: no lvx_fuzz() of that name")
    endif()
  endforeach()

  if(forgotten)
    list(JOIN forgotten "\n  " list)
    message(FATAL_ERROR "not registered, so it would never run:\n  ${list}")
  endif()
endfunction()
