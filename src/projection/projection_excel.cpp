#include "projection/projection_excel.h"
