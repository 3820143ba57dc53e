#include "runtime/model_objects.h"
