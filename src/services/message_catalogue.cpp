#include "services/message_catalogue.h"
