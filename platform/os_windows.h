// What the Windows sources of the platform share among themselves.
#ifndef TABWERK_PLATFORM_OS_WINDOWS_H
#define TABWERK_PLATFORM_OS_WINDOWS_H

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>

#include "platform/platform.h"

namespace tabwerk::platform::os {

// The path as the system takes it, in the extended form where it is too long
// for the plain one; empty when it names no file.
std::wstring NativePath(zWString const& path);

// The same for a path that is wide already.
std::wstring ExtendLongPath(std::wstring const& path);

Error ErrorFromSystem(DWORD code);

}  // namespace tabwerk::platform::os

#endif  // _WIN32

#endif  // TABWERK_PLATFORM_OS_WINDOWS_H
