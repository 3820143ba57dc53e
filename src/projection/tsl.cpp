#include "projection/tsl.h"
