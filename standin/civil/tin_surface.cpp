#include "civil/tin_surface.h"
