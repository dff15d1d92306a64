// A public header that reaches into the library and asks for the system.
#include "schema/codec.h"
#ifdef _WIN32
#endif
