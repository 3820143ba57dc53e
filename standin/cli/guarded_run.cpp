#include "cli/guarded_run.h"

#include <cstdlib>
#include <exception>
#include <new>
#include <string>

#include "cli/failure.h"
#include "cli/terminal.h"
#include "runtime/open_drawing.h"

namespace lvx::cli {

namespace {
constexpr const char* kNoMemory = "the command ended by an exception: there is not enough memory";
}

void endWithoutMemory() {
  // Functions of the C++ library that list folders let no exception out, run out of memory all the same, and end the
  // process in mid-flight: there is one on its way then, but none to be looked at.
  bool isShort = !std::current_exception() && std::uncaught_exceptions() > 0;
  try {
    if (std::current_exception()) std::rethrow_exception(std::current_exception());
  } catch (const std::bad_alloc&) {
    isShort = true;
  } catch (...) {
    std::abort();
  }
  if (!isShort) std::abort();
  // Past all that gathers words: it may be what found no memory.
  for (const char* const part : {"lvxhost: ", kNoMemory, "\n"}) tell(part);
  std::_Exit(kException);
}

int runGuarded(const std::function<int()>& work) {
  try {
    return work();
  } catch (const Failure& failure) {
    say(failure.what());
    return failure.code();
  } catch (const runtime::Interrupted&) {
    say("interrupted; no unfinished file was left");
    return kInterrupted;
  } catch (const std::bad_alloc&) {
    say(kNoMemory);
    return kException;
  } catch (const std::exception& error) {
    say(std::string("the command ended by an exception: ") + error.what());
    return kException;
  }
}

}  // namespace lvx::cli
