// A layer that includes one above it, and a header without a folder.
#include "upwards.h"

#include "api.h"
#include "platform/platform.h"
