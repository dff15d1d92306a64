#include "cli/check_structure.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>

#include "cli/files.h"
#include "cli/health_card.h"
#include "cli/text.h"
#include "schema/format.h"
#include "schema/layout.h"

namespace tabwerk::tool {
namespace {

using enum Severity;

// --- Header ------------------------------------------------------------------

bool IsDecimal(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char it) { return it >= '0' && it <= '9'; });
}

void CheckVersion(FileImage const& image, CheckReport& report) {
  constexpr std::size_t kAt = format::kVersionTag.size();
  std::string_view const digits =
      std::string_view(image.bytes).substr(kAt, format::kCurrentVersion.size());
  bool const is_number = IsDecimal(digits);
  bool const is_known = is_number && digits <= format::kCurrentVersion &&
                        image.header.version >= format::kHeaderlessVersion;
  if (is_known) return;
  report.Add(kWarning, TW(312), At(image, kAt),
             is_number ? fmt::format("the format version {} is none that is "
                                     "known here",
                                     digits)
                       : "the format version is no number of four digits",
             "check with a newer tool, or restore the file from a backup");
}

void CheckTime(FileImage const& image, CheckReport& report) {
  if (image.header_bytes < static_cast<std::int64_t>(format::kHeaderSize)) {
    return;
  }
  constexpr std::size_t kTagAt =
      format::kVersionTag.size() + format::kCurrentVersion.size();
  constexpr std::size_t kStampAt = kTagAt + format::kTimeTag.size();
  if (image.bytes.compare(kTagAt, format::kTimeTag.size(), format::kTimeTag) !=
      0) {
    report.Add(kWarning, TW(313), At(image, kTagAt),
               "\"time\" does not stand before the time of writing", kSaveAnew);
  }
  std::int64_t const time = image.header.time_stamp;
  if (time < 0 || time >= kEndOfDates) {
    report.Add(kWarning, TW(314), At(image, kStampAt),
               fmt::format("the time of writing, {}, is no date", time),
               kSaveAnew);
  }
}

// --- List of tables ----------------------------------------------------------

void CheckFault(FileImage const& image, CheckReport& report) {
  CheckPlace const place = At(image, image.fault_at);
  std::string const number = std::to_string(image.records.size() + 1);
  switch (image.fault) {
    case ListFault::kNone:
      return;
    case ListFault::kRecordStart:
      return report.AddDamage(TW(320), place,
                              "record " + number +
                                  " of the list of tables does not begin with "
                                  "\"anf\"",
                              kRestore);
    case ListFault::kRecordEnd:
      return report.AddDamage(TW(326), place,
                              "record " + number +
                                  " of the list of tables does not end with "
                                  "\"end\"",
                              kRestore);
    case ListFault::kCut:
      return report.AddDamage(
          TW(325), place,
          "the file ends inside record " + number + " of the list of tables",
          kRestore);
    case ListFault::kTooLong:
      return report.AddDamage(
          TW(325), place, "the list of tables is longer than 2 GiB", kRestore);
  }
}

void CheckColumns(FileImage const& image, RecordImage const& record,
                  CheckReport& report) {
  CheckPlace place = At(image, record, record.definition_at);
  std::set<std::string> names;
  for (DBFeld const* field = record.definition.GetDefinition();
       field != nullptr; field = field->next) {
    place.column = NameToUtf8(field->name);
    if (field->type == DBTypeUnknown && field->name[0] != '\0') {
      report.Add(kWarning, TW(328), place,
                 "the column has no type that is known, so it holds no value",
                 "give it the type integer, real or string in the script");
    }
    if (!names.insert(field->name).second) {
      report.Add(kWarning, TW(330), place,
                 "an earlier column has the same name, so that this one is "
                 "never found",
                 "give it another name in the script");
    }
  }
  place.column.clear();
  std::string text;
  if (!StoredText(record.definition, &text)) {
    report.Add(kWarning, TW(329), place,
               "the definition cannot be written as it was read (a name of 64 "
               "characters or more?), so the file cannot be saved",
               "correct it in the script and build the database anew");
  }
}

void CheckRecord(FileImage const& image, RecordImage const& record,
                 CheckReport& report) {
  if (record.name_is_cut) {
    report.Add(kError, TW(321), At(image, record, record.name_at),
               "the name of the table does not end within 64 bytes", kRestore);
  } else if (record.name.empty()) {
    report.Add(kError, TW(322), At(image, record.name_at),
               fmt::format("the table at byte {} has no name", record.start_at),
               kRestore);
  }
  if (record.definition_is_cut) {
    report.Add(kError, TW(324), At(image, record, record.definition_at),
               "the definition does not end within 16384 bytes", kRestore);
  }
  CheckColumns(image, record, report);
  if (record.reserved != 0) {
    report.Add(kWarning, TW(331), At(image, record, record.numbers_at + 4),
               fmt::format("the second number of the record is {} instead of 0",
                           record.reserved),
               kRestore);
  }
}

}  // namespace

CheckPlace At(FileImage const& image, std::int64_t byte) {
  CheckPlace place;
  place.file = image.path;
  place.byte = byte;
  return place;
}

CheckPlace At(FileImage const& image, RecordImage const& record,
              std::int64_t byte) {
  CheckPlace place = At(image, byte);
  place.table = record.name;
  return place;
}

void CheckHeader(FileImage const& image, CheckReport& report) {
  if (image.size_bytes == 0) return;
  if (!image.has_known_start) {
    report.Add(kError, TW(310), At(image, 0),
               "the file does not begin as a database file does", kRestore);
    return;
  }
  if (image.bytes.starts_with(format::kRecordStart)) return;
  if (image.header_is_cut) {
    report.Add(kError, TW(311), At(image, image.size_bytes),
               "the file ends inside its header", kRestore);
    return;
  }
  CheckVersion(image, report);
  CheckTime(image, report);
}

void CheckList(FileImage const& image, bool is_user_file, CheckReport& report) {
  std::set<std::string> names;
  for (RecordImage const& record : image.records) {
    CheckRecord(image, record, report);
    if (!names.insert(record.name).second) {
      report.Add(kError, TW(323), At(image, record, record.start_at),
                 "an earlier table has the same name, and its rows are never "
                 "found",
                 kRestore);
    }
  }
  CheckFault(image, report);
  if (!image.HasWholeList()) return;
  if (image.records.empty() && !is_user_file) {
    report.AddDamage(TW(315), At(image, image.header_bytes),
                     "the file has no tables", kRestore);
  } else if (!image.has_list_end && image.size_bytes > 0 &&
             !image.header_is_cut) {
    report.Add(kError, TW(327), At(image, image.size_bytes),
               "the file ends before the zero byte that ends its list of "
               "tables",
               kRestore);
  }
}

void CheckUserTables(FileImage const& main, FileImage const& user,
                     CheckReport& report) {
  for (RecordImage const& record : user.records) {
    if (user.Find(record.name) != &record) continue;
    RecordImage const* const shipped = main.Find(record.name);
    CheckPlace const place = At(user, record, record.definition_at);
    if (shipped == nullptr) {
      report.Add(Severity::kNote, TW(350), place,
                 fmt::format("the main file has no such table; {} of the user "
                             "file will be left out at the next save",
                             Count(std::max(record.row_count, 0), "row")));
    } else if (!SameLayout(shipped->definition, record.definition)) {
      report.Add(kError, TW(349), place,
                 "the table has other types or another record size in " +
                     main.path + ", so the files do not open together",
                 "open the user file with the main file that it was made for");
    }
  }
}

}  // namespace tabwerk::tool
