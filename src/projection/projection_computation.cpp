#include "projection/projection_computation.h"
