// Allowed here.
#include <windows.h>

#include "ztypes/text.h"
#ifdef _WIN32
FILE* Open() { return std::fopen("a", "r"); }
#endif
