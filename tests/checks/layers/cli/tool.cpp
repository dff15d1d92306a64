// The public headers and schema/ only.
#include <cstdio>

#include "api.h"
#include "schema/codec.h"
#include "table/rows.h"
