#include "cli/commands.h"

namespace tabwerk::tool {
namespace {

constexpr CommandEntry kCommands[] = {
    {"build", "Make a database file from a script", &MakeBuildCommand},
    {"info", "Say what is in database files, without loading them",
     &MakeInfoCommand},
    {"show", "Print the rows of a table", &MakeShowCommand},
    {"import", "Append rows from a text file to a user file",
     &MakeImportCommand},
    {"dump", "Print a table as it is stored, texts in all languages",
     &MakeDumpCommand},
};

}  // namespace

std::span<CommandEntry const> AllCommands() { return kCommands; }

}  // namespace tabwerk::tool
