// What the example needs of the terminal: arguments and lines of text that
// arrive with every character, whatever the system.
#ifndef TABWERK_EXAMPLES_HOST_CONSOLE_H
#define TABWERK_EXAMPLES_HOST_CONSOLE_H

#include <cstdio>
#include <vector>

#include "ztypes.h"

namespace console {

// The arguments of the program, its name first.
std::vector<zWString> Arguments(int argc, char** argv);

// Writes the text and a line feed to stdout or stderr: to a Windows console as
// UTF-16, everywhere else as UTF-8.
void PrintLine(std::FILE* stream, zWString const& text);

}  // namespace console

#endif  // TABWERK_EXAMPLES_HOST_CONSOLE_H
