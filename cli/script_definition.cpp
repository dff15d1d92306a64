#include "cli/script_definition.h"

#include <array>

#include "schema/container.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr std::string_view kSeparators = " \t\n";
constexpr std::size_t kMaxDefinitionBytes = 16383;
constexpr std::array<std::string_view, 3> kSystemColumns = {"ID", "FOLGE",
                                                            "STATUS"};
constexpr char kAdvice[] =
    "write \"name type\", or end the definition with \"ENDDEF\"";

// The type that the library takes the word for.
DBType TypeOf(std::string_view word) {
  DBDefinition const one((std::string(word) + " X\n").c_str());
  DBFeld const* const field = one.GetDefinition();
  return field != nullptr ? field->type : DBTypeUnknown;
}

}  // namespace

DefinitionScan::DefinitionScan(ScriptContext& context, std::string_view keyword)
    : context_(context), begin_(context.lines().At(keyword)) {}

bool DefinitionScan::Run(ScriptTable* table) {
  table_name_ = ScriptToUtf8(table->name);
  bool ended = false;
  bool is_statement = false;
  while (!ended && !is_statement) {
    std::string_view line = context_.Next();
    std::string_view const name = NextWord(&line, kSeparators);
    if (name == kEndOfDefinition) {
      context_.CheckRest(line);
      break;
    }
    // Behind an error the definition may have no end.
    is_statement = !is_sound_ && IsKeyword(name);
    ended = is_statement || ReadLine(name, line);
  }
  if (is_sound_) text_ += "\n";
  table->definition = DBDefinition(text_.c_str());
  if (is_sound_) CheckStored(table->definition);
  table->is_sound = is_sound_;
  return !is_statement;
}

// True when it is the last line of the script.
bool DefinitionScan::ReadLine(std::string_view name, std::string_view rest) {
  std::string_view const type = NextWord(&rest, kSeparators);
  if (type.empty()) {
    is_sound_ = false;
    if (context_.lines().AtEnd()) {
      context_.Error(TW(206), begin_,
                     "the definition of table " + table_name_ + " does not end",
                     "put a line \"ENDDEF\" behind its columns");
      return true;
    }
    ReportIncomplete(name);
    return false;
  }
  bool const is_reported = CheckColumn(name, type);
  context_.CheckRest(rest);
  columns_.push_back({std::string(name), std::string(type),
                      context_.lines().At(name), is_reported});
  Append(name, type);
  return false;
}

void DefinitionScan::ReportIncomplete(std::string_view name) {
  if (name.empty()) {
    context_.Error(TW(208), context_.lines().At(),
                   "an empty line inside a definition", kAdvice);
  } else if (SimilarKeyword(name) == kEndOfDefinition) {
    context_.Error(TW(207), context_.lines().At(name),
                   "a column needs a name and a type",
                   "write \"ENDDEF\" if that is meant");
  } else {
    context_.Error(TW(207), context_.lines().At(),
                   "a column needs a name and a type", kAdvice);
  }
}

// True when something was reported that changes what the column is.
bool DefinitionScan::CheckColumn(std::string_view name, std::string_view type) {
  if (IsKeyword(name)) {
    context_.Warn(TW(242), context_.lines().At(name),
                  "inside a definition this is read as a column, not as a "
                  "statement",
                  "put a line \"ENDDEF\" before it");
    return true;
  }
  bool reported = CheckName(name);
  DBType const known = TypeOf(type);
  if (known == DBTypeUnknown) {
    context_.Warn(TW(229), context_.lines().At(type),
                  "there is no type " + Quoted(type) +
                      ": the column holds nothing, and data for it end the "
                      "reading",
                  "use integer, real or string; between NEWTABLE and ENDDEF "
                  "every line is a column, a comment, too");
    reported = true;
  }
  CheckSystemColumn(name, known);
  return reported;
}

bool DefinitionScan::CheckName(std::string_view name) {
  context_.CheckEncoding(name);
  if (name.size() >= DBFeld::kNameSize) {
    context_.Error(TW(226), context_.lines().At(name),
                   "the name of the column is too long, which keeps the "
                   "database from being written",
                   "use no more than 63 characters");
    is_sound_ = false;
    return true;
  }
  if (!names_.insert(std::string(name)).second) {
    context_.Warn(TW(230), context_.lines().At(name),
                  "there is already a column " + Quoted(name) +
                      ", which gets the values of both",
                  "give this one another name");
  }
  return false;
}

void DefinitionScan::CheckSystemColumn(std::string_view name, DBType type) {
  std::string const upper = zWString::fromLatin1(name).ToUpper().toLatin1();
  for (std::string_view const system : kSystemColumns) {
    if (name == system && type != DBTypeInteger && type != DBTypeUnknown) {
      context_.Warn(TW(244), context_.lines().At(name),
                    "the column " + Quoted(name) +
                        " is no integer, so the library makes no use of it",
                    "make it an integer, or give it another name");
    } else if (name != system && upper == system) {
      context_.Note(TW(243), context_.lines().At(name),
                    "the library makes no use of " + Quoted(name) +
                        "; it knows " + Quoted(system),
                    "write it in capital letters if that is meant");
    }
  }
}

void DefinitionScan::Append(std::string_view name, std::string_view type) {
  if (is_too_long_) return;
  if (!text_.empty()) text_ += ", ";
  text_.append(type).append(" ").append(name);
  if (text_.size() < kMaxDefinitionBytes) return;
  context_.Error(TW(209), context_.lines().At(name),
                 "the definition is too long",
                 "use fewer columns, or shorter names");
  is_too_long_ = true;
  is_sound_ = false;
}

// Whether the library reads the columns that the lines name, and whether it
// can write them.
void DefinitionScan::CheckStored(DBDefinition const& definition) {
  std::string stored;
  bool const can_be_written = tabwerk::StoredText(definition, &stored);
  Column const* const column = FirstReadOtherwise(definition);
  if (!can_be_written) {
    context_.Error(TW(227), column != nullptr ? column->where : begin_,
                   "the definition is too long, or reads as another one, as "
                   "it is stored, which keeps the database from being written",
                   "use fewer columns, and plain words for their names");
    is_sound_ = false;
  } else if (column != nullptr && !column->is_reported) {
    context_.Warn(TW(228), column->where,
                  "the library does not read this line as the column " +
                      Quoted(column->name),
                  "use letters, digits and \"_\" in names, and one of the "
                  "types integer, real and string");
  }
}

// Null when all columns are read as they are written.
DefinitionScan::Column const* DefinitionScan::FirstReadOtherwise(
    DBDefinition const& definition) const {
  DBFeld const* field = definition.GetDefinition();
  for (Column const& column : columns_) {
    if (field == nullptr || column.name != field->name ||
        TypeOf(column.type) != field->type) {
      return &column;
    }
    field = field->next;
  }
  return nullptr;
}

}  // namespace tabwerk::tool
