#include "civil/element.h"
