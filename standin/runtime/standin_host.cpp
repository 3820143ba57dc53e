#include "runtime/standin_host.h"
