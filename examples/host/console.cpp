#include "console.h"

#include <cstddef>
#include <string>

#ifdef _WIN32
#include <windows.h>
// Needs the types of the one above.
#include <shellapi.h>
#endif

namespace console {
namespace {

void PrintUtf8(std::FILE* stream, zWString const& text) {
  std::string const line = text.toUtf8() + "\n";
  // A terminal that is gone is nobody to tell about it.
  static_cast<void>(std::fwrite(line.data(), 1, line.size(), stream));
}

}  // namespace

#ifdef _WIN32

std::vector<zWString> Arguments(int argc, char** argv) {
  // argv has lost the characters outside of the code page.
  int count = 0;
  LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<zWString> arguments;
  if (words == nullptr) {
    for (int i = 0; i < argc; ++i) {
      arguments.push_back(zWString::fromLatin1(argv[i]));
    }
    return arguments;
  }
  for (int i = 0; i < count; ++i) arguments.emplace_back(words[i]);
  LocalFree(words);
  return arguments;
}

void PrintLine(std::FILE* stream, zWString const& text) {
  HANDLE const handle =
      GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode) == 0) return PrintUtf8(stream, text);
  std::wstring const line = text.toStdWString() + L"\r\n";
  DWORD written = 0;
  WriteConsoleW(handle, line.data(), static_cast<DWORD>(line.size()), &written,
                nullptr);
}

#else

std::vector<zWString> Arguments(int argc, char** argv) {
  std::vector<zWString> arguments;
  arguments.reserve(static_cast<std::size_t>(argc));
  for (int i = 0; i < argc; ++i) {
    arguments.push_back(zWString::fromUtf8(argv[i]));
  }
  return arguments;
}

void PrintLine(std::FILE* stream, zWString const& text) {
  PrintUtf8(stream, text);
}

#endif

}  // namespace console
