#include "services/station_text.h"
