# Writes OUTPUT, the source with commit and date of the repository SOURCE, where it isn't the same already:
#   cmake -D GIT=git -D SOURCE=. -D OUTPUT=stamp.cpp -P WriteStamp.cmake
# Sources that came without their history have neither; a folder of somebody else's history isn't ours.
set(commit)
set(date)
if(GIT AND EXISTS "${SOURCE}/.git")
  execute_process(COMMAND "${GIT}" show -s --no-show-signature --abbrev=12 --format=%h%n%cd --date=format:%Y-%m-%d HEAD
                  WORKING_DIRECTORY "${SOURCE}" OUTPUT_VARIABLE shown ERROR_QUIET)
  if(shown MATCHES "^([0-9a-f]+)\n([0-9]+-[0-9]+-[0-9]+)")
    set(commit "${CMAKE_MATCH_1}")
    set(date "${CMAKE_MATCH_2}")
  endif()
endif()
set(text "#include \"version/detail/stamp.h\"

namespace lvx::version::detail {

const char* const kCommit = \"${commit}\";
const char* const kCommitDate = \"${date}\";

}  // namespace lvx::version::detail
")
set(old)
if(EXISTS "${OUTPUT}")
  file(READ "${OUTPUT}" old)
endif()
if(NOT old STREQUAL text)
  file(WRITE "${OUTPUT}" "${text}")
endif()
