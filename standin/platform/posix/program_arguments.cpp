#include "standin_platform/program_arguments.h"

namespace lvx::standin_platform {

std::vector<std::string> programArguments(int count, char** arguments) { return {arguments, arguments + count}; }

}  // namespace lvx::standin_platform
