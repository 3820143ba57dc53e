#include "civil/drawing.h"
