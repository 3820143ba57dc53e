#include "civil/alignment.h"
