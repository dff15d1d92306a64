// What differs between the systems that the tool runs on: its streams, the
// terminal, and why a file does not open.  Texts are UTF-8 everywhere.
#ifndef TABWERK_CLI_CONSOLE_H
#define TABWERK_CLI_CONSOLE_H

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace tabwerk::tool::console {

// To be called first: from then on pipes and files get exactly the bytes that
// are written.
void SetUp();

// Write to standard output and standard error.  A console gets every
// character, whatever its code page.
void Out(std::string_view text);
void Err(std::string_view text);

// Hands everything to the system.  False when some of the output was lost.
[[nodiscard]] bool FlushOut();
// True once output was lost, for example because nobody reads the pipe.
bool OutFailed();
// True when that is why: whoever read it has seen enough.
bool ReaderLeft();

bool OutIsTerminal();
bool ErrIsTerminal();
// True for a terminal that also knows colours.
bool OutTakesColor();
bool ErrTakesColor();
// Columns of the terminal; 80 where that is unknown.
int OutWidth();
int ErrWidth();

// All of standard input, byte for byte.  False when reading failed.
[[nodiscard]] bool ReadIn(std::string* content);

// True when bytes written to stdout itself, past Out, show as UTF-8.
bool OutTakesUtf8();

// As fopen, for any path.
std::FILE* OpenStream(std::filesystem::path const& path, char const* mode);

// True for a path that leads to standard output or to standard error, whatever
// they are.
bool IsStandardOutput(std::filesystem::path const& path);
bool IsStandardError(std::filesystem::path const& path);
// True for a path that stands for a device or for a stream of this process. It
// is never replaced, although it may look like a file, or lead to one.
bool IsDevice(std::filesystem::path const& path);

// For a file that is there and that the library does not open, to write it or
// only to read: true when another opener is the reason.
bool IsHeld(std::filesystem::path const& path, bool for_writing);

}  // namespace tabwerk::tool::console

#endif  // TABWERK_CLI_CONSOLE_H
