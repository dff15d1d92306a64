// Paths and file services on Windows.
#ifdef _WIN32

#include <array>

#include "platform/os_windows.h"

namespace tabwerk::platform::os {
namespace {

constexpr ULONGLONG kPatienceMilliseconds = 2000;
constexpr DWORD kPauseMilliseconds = 20;
// From here on a path is given in the extended form.  Below the system's limit
// of 260, which folders reach 12 units earlier.
constexpr std::size_t kLongPathUnits = 240;

std::wstring_view constexpr kExtendedPrefix = L"\\\\?\\";

// The whole path from the root, with "\" for separators.
std::wstring FullPath(std::wstring const& path) {
  DWORD const needed = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
  if (needed == 0) {
    return std::wstring();
  }
  std::wstring full(needed, L'\0');
  DWORD const length =
      GetFullPathNameW(path.c_str(), needed, full.data(), nullptr);
  if (length == 0 || length >= needed) {
    return std::wstring();
  }
  full.resize(length);
  return full;
}

// True while another opener keeps the file from being deleted or replaced.
bool IsHeld(std::wstring const& path) {
  HANDLE const handle =
      CreateFileW(path.c_str(), DELETE,
                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return GetLastError() == ERROR_SHARING_VIOLATION;
  }
  CloseHandle(handle);
  return false;
}

bool IsFolder(std::wstring const& path) {
  DWORD const attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES &&
         (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsRefusal(DWORD code) {
  return code == ERROR_ACCESS_DENIED || code == ERROR_SHARING_VIOLATION ||
         code == ERROR_LOCK_VIOLATION || code == ERROR_USER_MAPPED_FILE;
}

// One try.  A read-only target cannot be moved onto, so the attribute is taken
// away first, and given back where the move fails.
DWORD TryReplace(std::wstring const& from, std::wstring const& to) {
  DWORD const attributes = GetFileAttributesW(to.c_str());
  bool const is_read_only = attributes != INVALID_FILE_ATTRIBUTES &&
                            (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  if (is_read_only) {
    SetFileAttributesW(
        to.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
  }
  if (MoveFileExW(from.c_str(), to.c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    return ERROR_SUCCESS;
  }
  DWORD const code = GetLastError();
  if (is_read_only) {
    SetFileAttributesW(to.c_str(), attributes);
  }
  return code;
}

}  // namespace

std::wstring ExtendLongPath(std::wstring const& path) {
  if (path.size() < kLongPathUnits ||
      path.compare(0, kExtendedPrefix.size(), kExtendedPrefix) == 0) {
    return path;
  }
  std::wstring const full = FullPath(path);
  if (full.empty()) {
    return path;
  }
  if (full.compare(0, 2, L"\\\\") == 0) {
    return L"\\\\?\\UNC" + full.substr(1);
  }
  return std::wstring(kExtendedPrefix) + full;
}

std::wstring NativePath(zWString const& path) {
  std::wstring const native = path.toStdWString();
  if (native.find(L'\0') != std::wstring::npos) {
    return std::wstring();
  }
  return ExtendLongPath(native);
}

Error ErrorFromSystem(DWORD code) {
  switch (code) {
    case ERROR_SUCCESS:
      return Error::kNone;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
    case ERROR_INVALID_DRIVE:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
      return Error::kNotFound;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
      return Error::kHeld;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_PRIVILEGE_NOT_HELD:
      return Error::kAccessDenied;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return Error::kExists;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return Error::kDiskFull;
    default:
      return Error::kInputOutput;
  }
}

bool Exists(zWString const& path) {
  std::wstring const native = NativePath(path);
  std::size_t const name_start =
      native.compare(0, kExtendedPrefix.size(), kExtendedPrefix) == 0
          ? kExtendedPrefix.size()
          : 0;
  // A pattern would find files of other names.
  if (native.empty() ||
      native.find_first_of(L"*?", name_start) != std::wstring::npos) {
    return false;
  }
  WIN32_FIND_DATAW found;
  HANDLE const search = FindFirstFileW(native.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    return false;
  }
  FindClose(search);
  return true;
}

Error Copy(zWString const& from, zWString const& to) {
  std::wstring const source = NativePath(from);
  std::wstring const target = NativePath(to);
  if (source.empty() || target.empty()) {
    return Error::kNotFound;
  }
  // The system removes a target that it began and could not finish.
  return CopyFileW(source.c_str(), target.c_str(), TRUE)
             ? Error::kNone
             : ErrorFromSystem(GetLastError());
}

Error Delete(zWString const& path) {
  std::wstring const native = NativePath(path);
  if (native.empty()) {
    return Error::kNotFound;
  }
  return DeleteFileW(native.c_str()) ? Error::kNone
                                     : ErrorFromSystem(GetLastError());
}

Error Replace(zWString const& from, zWString const& to) {
  std::wstring const source = NativePath(from);
  std::wstring const target = NativePath(to);
  if (source.empty() || target.empty()) {
    return Error::kNotFound;
  }
  if (IsFolder(source) || IsFolder(target)) {
    return Error::kAccessDenied;
  }
  ULONGLONG const deadline = GetTickCount64() + kPatienceMilliseconds;
  DWORD code = TryReplace(source, target);
  // A refusal without an opener is tried again as well: virus scanners hold
  // new files for an instant.
  while (IsRefusal(code) && GetTickCount64() < deadline) {
    Sleep(kPauseMilliseconds);
    code = TryReplace(source, target);
  }
  if (IsRefusal(code) && (IsHeld(source) || IsHeld(target))) {
    return Error::kHeld;
  }
  return ErrorFromSystem(code);
}

// The move writes through, and the system has no other such step.
bool SyncFolderOf(zWString const& path) { return !NativePath(path).empty(); }

bool ClearReadOnly(zWString const& path) {
  std::wstring const native = NativePath(path);
  if (native.empty()) {
    return false;
  }
  DWORD const attributes = GetFileAttributesW(native.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES ||
      (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    return false;
  }
  return (attributes & FILE_ATTRIBUTE_READONLY) == 0 ||
         SetFileAttributesW(
             native.c_str(),
             attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
}

zWString TempFolder() {
  std::array<wchar_t, MAX_PATH + 2> folder{};
  DWORD const length =
      GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  if (length == 0 || length >= folder.size()) {
    return zWString();
  }
  return zWString(folder.data());
}

zWString MakeTempFile(zWString const& folder, char const* prefix) {
  std::wstring const native = NativePath(folder);
  if (native.empty() || prefix == nullptr) {
    return zWString();
  }
  std::wstring const wide_prefix = zWString::fromLatin1(prefix).toStdWString();
  std::array<wchar_t, MAX_PATH + 1> path{};
  if (GetTempFileNameW(native.c_str(), wide_prefix.c_str(), 0, path.data()) ==
      0) {
    return zWString();
  }
  return zWString(path.data());
}

namespace {

// What the system knows of a file; false where there is none.
bool Identify(zWString const& path, BY_HANDLE_FILE_INFORMATION* identity) {
  HANDLE const handle =
      CreateFileW(NativePath(path).c_str(), 0,
                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return false;
  }
  bool const known = GetFileInformationByHandle(handle, identity) != 0;
  CloseHandle(handle);
  return known;
}

}  // namespace

bool SameFile(zWString const& one, zWString const& other) {
  BY_HANDLE_FILE_INFORMATION first;
  BY_HANDLE_FILE_INFORMATION second;
  return Identify(one, &first) && Identify(other, &second) &&
         first.dwVolumeSerialNumber == second.dwVolumeSerialNumber &&
         first.nFileIndexHigh == second.nFileIndexHigh &&
         first.nFileIndexLow == second.nFileIndexLow;
}

}  // namespace tabwerk::platform::os

#endif  // _WIN32
