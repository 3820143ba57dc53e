#include "services/narrow_write.h"
