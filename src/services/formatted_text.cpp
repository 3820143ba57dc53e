#include "services/formatted_text.h"
