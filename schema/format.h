// Constants of the database file format; docs/format.md shows the layout.
#ifndef TABWERK_SCHEMA_FORMAT_H
#define TABWERK_SCHEMA_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tabwerk::format {

inline constexpr std::string_view kVersionTag = "ver";
inline constexpr std::string_view kTimeTag = "time";
inline constexpr std::string_view kRecordStart = "anf";
inline constexpr std::string_view kRecordEnd = "end";

// Written by this library.
inline constexpr std::string_view kCurrentVersion = "2025";
// The version of a file that has no header.
inline constexpr short kHeaderlessVersion = 2014;
// From this version on a time stamp may follow the version.
inline constexpr short kFirstTimedVersion = 2017;

// Sizes in bytes, the NUL included.
inline constexpr std::size_t kMaxTableName = 64;
inline constexpr std::size_t kMaxDefinition = 16384;

// Bytes of the current header: tag, version, tag, time stamp.
inline constexpr std::size_t kHeaderSize = 19;

// Longest text that can be written, in 16-bit units without the NUL.
inline constexpr std::size_t kMaxTextUnits = 8095;

// Bytes of a value in a row record.
inline constexpr std::int32_t kIntegerSize = 4;
inline constexpr std::int32_t kRealSize = 8;
inline constexpr std::int32_t kStringSize = 4;

inline constexpr std::string_view kUserFileExtension = ".UDB";
inline constexpr std::string_view kIndexFileExtension = ".idx";

}  // namespace tabwerk::format

#endif  // TABWERK_SCHEMA_FORMAT_H
