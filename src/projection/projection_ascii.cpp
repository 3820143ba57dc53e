#include "projection/projection_ascii.h"
