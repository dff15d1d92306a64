// The one leaf of the manager is allowed, the manager is not.
#include "base/manager.h"
#include "base/translation.h"
