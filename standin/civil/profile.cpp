#include "civil/profile.h"
