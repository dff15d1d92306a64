#include "cli/data_lint.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "cli/data_lines.h"
#include "cli/row_lint.h"
#include "cli/text.h"

namespace tabwerk::tool {
namespace {

// Text of 16-bit units has bytes of 0 soon: those of commas and line feeds.
bool LooksLikeBytes(std::string_view content) {
  constexpr std::size_t kLooked = 4096;
  return content.substr(0, kLooked).find('\0') == content.npos;
}

}  // namespace

DataLint::DataLint(ScriptTable const& table, TakeFinding take)
    : table_(table), take_(std::move(take)) {}

void DataLint::Warn(Code code, Place where, std::string what,
                    std::string advice) {
  take_(Severity::kWarning,
        {code, std::move(where), std::move(what), std::move(advice)});
}

bool DataLint::CheckEncoding(std::string const& path,
                             std::string_view content) {
  if (content.size() < kMarkBytes) {
    Warn(TW(250), path, "the file is empty", "begin it with the bytes FF FE");
    return false;
  }
  if (content.starts_with("\xFE\xFF")) {
    Warn(TW(251), path,
         "the file is big-endian UTF-16; its bytes are read in the wrong order",
         "save it as UTF-16LE");
    return false;
  }
  if (!content.starts_with("\xFF\xFE")) {
    if (LooksLikeBytes(content)) {
      Warn(TW(252), path,
           "the file is 8-bit text; two of its bytes are read as one character",
           "save it as UTF-16LE with a byte-order mark");
      return false;
    }
    Warn(TW(250), path,
         "the file does not begin with a byte-order mark; its first character "
         "is not read",
         "begin it with the bytes FF FE");
  }
  if (content.size() % 2 != 0) {
    Warn(TW(253), path,
         "the file has an odd number of bytes; the last is not "
         "read",
         "see whether the file was cut");
  }
  return true;
}

void DataLint::Read(std::string const& path, std::string_view content) {
  if (!CheckEncoding(path, content)) return;
  files_.push_back(std::make_unique<DataLines>(path, content));
  RowLint(table_, *files_.back(), take_, &numbers_, files_.size() - 1,
          &row_count_)
      .Run();
}

void DataLint::End() {
  RowNumbers::Gaps const gaps = numbers_.FindGaps();
  if (gaps.count == 0) return;
  Warn(TW(262), files_[gaps.row.file]->At(gaps.row.in_file),
       fmt::format("no row has the place {} before {}{}", gaps.first, gaps.next,
                   gaps.count == 1 ? std::string()
                                   : fmt::format(", and {} more are missing",
                                                 Grouped(gaps.count - 1))),
       "number the rows 1, 2, 3 … in FOLGE");
}

}  // namespace tabwerk::tool
