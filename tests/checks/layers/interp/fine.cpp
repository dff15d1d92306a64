// May include every layer, not the tool.
#include <vector>

#include "base/manager.h"
#include "cli/command.h"
#include "interp/tokenizer.h"
