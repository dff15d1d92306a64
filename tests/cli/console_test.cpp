// Every script on its way through arguments, paths, standard input and output,
// and to a console of any code page.
#include "tests/cli/tool_test.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <fstream>
#include <thread>
#include <utility>

#include "tests/support/child_process.h"
#include "tests/support/places.h"
#include "ztypes.h"
#endif

namespace tabwerk::test {
namespace {

// German, Greek, Cyrillic, Chinese, Arabic; the last one is an emoji with its
// colour and a joined one.
constexpr char const* kTexts[] = {"Größe", "Μέγεθος", "Размер",
                                  "尺寸",  "الحجم",   "👍🏽 👩‍💻"};

using ToolCharacters = ToolTest;

TEST_F(ToolCharacters, ComeThroughArgumentsPathsInputAndOutput) {
  for (std::string const text : kTexts) {
    MakeStock();
    std::string const database = text + ".db";
    folder_.Make(database, folder_.Content("stock.db"));
    std::string const user_file = text + ".UDB";
    folder_.Make(user_file, folder_.Content("STOCK.UDB"));
    auto const added = Run({"add", database, user_file, "-t", "ARTICLE",
                            "NAME=" + text + " (argument)"});
    EXPECT_EQ(0, added.exit_code) << added.err;
    auto const imported = RunWith(
        {{"import", "-", database, user_file, "-t", "ARTICLE", "--from", "csv"},
         "NAME\n" + text + " (input)\n",
         {}});
    EXPECT_EQ(0, imported.exit_code) << imported.err;
    std::vector<std::string> const show = {
        "show", database,      user_file, "ARTICLE", "--columns",
        "NAME", "--part",      "user",    "--where", "STATUS=0",
        "--id", "20001,20002", "-o",      "-"};
    std::string const names =
        "NAME\n" + text + " (argument)\n" + text + " (input)\n";
    EXPECT_EQ(names, Run(show).out);
    auto to_file = show;
    to_file.back() = text + ".txt";
    EXPECT_EQ("", Run(to_file).out);
    EXPECT_EQ(names, folder_.Content(text + ".txt"));
    EXPECT_EQ(0U, Run({"info", text + "/none.db"})
                      .err.find(text + "/none.db: error[TW110]: "));
  }
}

#ifdef _WIN32

// Takes a console without a window, which hands out what it shows as UTF-8
// with control sequences.
class PseudoConsole {
 public:
  PseudoConsole() {
    HMODULE const kernel = GetModuleHandleW(L"kernel32.dll");
    auto const create =
        Function<HRESULT(WINAPI*)(COORD, HANDLE, HANDLE, DWORD, void**)>(
            kernel, "CreatePseudoConsole");
    close_ = Function<void(WINAPI*)(void*)>(kernel, "ClosePseudoConsole");
    if (create == nullptr || close_ == nullptr) return;
    CreatePipe(&keys_, &keyboard_, nullptr, 0);
    CreatePipe(&shown_, &screen_, nullptr, 0);
    constexpr COORD kSize = {120, 30};
    if (create(kSize, keys_, screen_, 0, &console_) != S_OK) console_ = nullptr;
    reader_ = std::thread([this] {
      char piece[4096];
      DWORD size = 0;
      while (ReadFile(shown_, piece, sizeof piece, &size, nullptr) &&
             size > 0) {
        text_.append(piece, size);
      }
    });
  }
  ~PseudoConsole() { static_cast<void>(Finish()); }
  PseudoConsole(PseudoConsole const&) = delete;
  PseudoConsole& operator=(PseudoConsole const&) = delete;

  bool IsThere() const { return console_ != nullptr; }

  // Starts the program in it and waits.
  int Run(std::wstring line, std::filesystem::path const& folder) {
    SIZE_T size = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<char> bytes(size);
    STARTUPINFOEXW start = {};
    start.StartupInfo.cb = sizeof start;
    start.lpAttributeList =
        reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(bytes.data());
    constexpr DWORD_PTR kPseudoConsole = 0x00020016;
    InitializeProcThreadAttributeList(start.lpAttributeList, 1, 0, &size);
    UpdateProcThreadAttribute(start.lpAttributeList, 0, kPseudoConsole,
                              console_, sizeof console_, nullptr, nullptr);
    PROCESS_INFORMATION made = {};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE,
                        EXTENDED_STARTUPINFO_PRESENT, nullptr, folder.c_str(),
                        &start.StartupInfo, &made)) {
      return -1;
    }
    WaitForSingleObject(made.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(made.hProcess, &code);
    CloseHandle(made.hThread);
    CloseHandle(made.hProcess);
    return static_cast<int>(code);
  }

  // All that it has shown.
  std::string Finish() {
    if (console_ != nullptr) close_(std::exchange(console_, nullptr));
    if (reader_.joinable()) {
      CloseHandle(screen_);
      reader_.join();
      for (HANDLE const handle : {keys_, keyboard_, shown_}) {
        CloseHandle(handle);
      }
    }
    return text_;
  }

 private:
  template <typename T>
  static T Function(HMODULE module, char const* name) {
    return reinterpret_cast<T>(
        reinterpret_cast<void*>(GetProcAddress(module, name)));
  }

  void(WINAPI* close_)(void*) = nullptr;
  void* console_ = nullptr;
  HANDLE keys_ = nullptr;
  HANDLE keyboard_ = nullptr;
  HANDLE shown_ = nullptr;
  HANDLE screen_ = nullptr;
  std::thread reader_;
  std::string text_;
};

// On the console that it is started on: sets the code page and runs the tool,
// whose arguments are the lines of a file, with its output on the console or
// in a file.
CHILD_FUNCTION(RunOnConsole) {
  auto const code_page = static_cast<UINT>(std::stoul(args[0]));
  std::filesystem::path const arguments(args[1]);
  if (!SetConsoleCP(code_page) || !SetConsoleOutputCP(code_page) ||
      GetConsoleOutputCP() != code_page) {
    return 100;
  }
  std::wstring line = QuotedWord(ToolPath());
  std::ifstream file(arguments, std::ios::binary);
  for (std::string word; std::getline(file, word);) {
    line += L" " + QuotedWord(word);
  }
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  bool const to_file = args.size() > 2;
  std::wstring const output =
      to_file ? std::filesystem::path(args[2]).wstring() : L"CONOUT$";
  HANDLE const out =
      CreateFileW(output.c_str(), GENERIC_READ | GENERIC_WRITE,
                  FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                  to_file ? CREATE_ALWAYS : OPEN_EXISTING, 0, nullptr);
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = out;
  start.hStdError = out;
  PROCESS_INFORMATION made = {};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                      nullptr, &start, &made)) {
    return 101;
  }
  WaitForSingleObject(made.hProcess, INFINITE);
  DWORD code = 0;
  GetExitCodeProcess(made.hProcess, &code);
  return static_cast<int>(code);
}

std::wstring ThisProgram() {
  std::wstring path(MAX_PATH, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
  return path;
}

class ToolConsole : public ToolTest {
 protected:
  ToolConsole() {
    std::vector<std::string> rows;
    for (char const* const text : kTexts) rows.emplace_back(text);
    MakeDatabase("a.db",
                 {PlainHeader::kCurrent, 1000, {{"T", "string NAME\n", rows}}});
    folder_.Make("words", "show\na.db\nT\n--format\ncsv\n");
  }

  // What the tool shows with these arguments, one a line.
  std::string Shown(std::string const& words, int exit_code) {
    PseudoConsole console;
    is_there_ = console.IsThere();
    if (!is_there_) return "";
    folder_.Make("words", words);
    EXPECT_EQ(exit_code, console.Run(Line("65001", ""), folder_.folder()));
    return console.Finish();
  }

  std::wstring Line(std::string const& code_page,
                    std::string const& more) const {
    return L"\"" + ThisProgram() + L"\" --child RunOnConsole " +
           zWString::fromUtf8(code_page + " words" + more).toStdWString();
  }

  bool is_there_ = true;
};

constexpr char kNoConsole[] = "the system has no such console";

constexpr char const* kCodePages[] = {"437", "850", "1252", "65001"};

TEST_F(ToolConsole, ShowsEveryCharacterWhateverItsCodePage) {
  for (char const* const code_page : kCodePages) {
    PseudoConsole console;
    if (!console.IsThere()) GTEST_SKIP() << kNoConsole;
    ASSERT_EQ(0, console.Run(Line(code_page, ""), folder_.folder()));
    std::string const shown = console.Finish();
    for (std::string const text : kTexts) {
      // Wine's console keeps the halves of a character pair apart.
      if (text == kTexts[5]) continue;
      EXPECT_NE(std::string::npos, shown.find(text)) << code_page << shown;
    }
  }
}

TEST_F(ToolConsole, WritesUtf8ToFilesWhateverItsCodePage) {
  std::string expected = "NAME\n";
  for (std::string const text : kTexts) expected += text + "\n";
  for (char const* const code_page : kCodePages) {
    PseudoConsole console;
    if (!console.IsThere()) GTEST_SKIP() << kNoConsole;
    ASSERT_EQ(0, console.Run(Line(code_page, " out.txt"), folder_.folder()));
    EXPECT_EQ(expected, folder_.Content("out.txt")) << code_page;
  }
}

// What is left without the control sequences (ESC [ … letter) and with "\n" for
// line ends.
std::string Plain(std::string const& shown) {
  std::string plain;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (shown[i] == '\x1B') {
      i = shown.find_first_of(
          "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", i);
      if (i == std::string::npos) break;
    } else if (shown[i] != '\r') {
      plain += shown[i];
    }
  }
  return plain;
}

TEST_F(ToolConsole, ShowsATableThatFits) {
  MakeDatabase("a.db", {PlainHeader::kCurrent,
                        1000,
                        {{"T",
                          "integer ID,string NAME\n",
                          {"1|Größe", "20|" + std::string(300, 'x')}}}});
  auto const shown = Shown("show\na.db\nT\n", 0);
  if (!is_there_) GTEST_SKIP() << kNoConsole;
  std::string const cut = std::string(115, 'x') + "…";
  EXPECT_EQ("ID  NAME\n--  " + std::string(116, '-') + "\n 1  Größe\n20  " +
                cut + "\n",
            Plain(shown));
}

TEST_F(ToolConsole, ShowsErrorsInColor) {
  auto const shown = Shown("info\nnone.db\n", 3);
  if (!is_there_) GTEST_SKIP() << kNoConsole;
  EXPECT_NE(std::string::npos, shown.find("\x1B[1;31merror[TW110]:\x1B[0m"))
      << shown;
}

TEST_F(ToolConsole, IsGivenNoDatabase) {
  auto const shown = Shown("convert\na.db\n-o\n-\n", 2);
  if (!is_there_) GTEST_SKIP() << kNoConsole;
  EXPECT_EQ(0U, Plain(shown).find("a.db: error[TW157]: a terminal takes no "
                                  "database"))
      << shown;
}

// So many rows that the machine needs more than half a second for them.
TEST_F(ToolConsole, ShowsABarWhileADatabaseIsBuilt) {
  std::string shown;
  for (std::size_t rows = 400000; rows <= 6400000; rows *= 2) {
    MakeLongScript(rows);
    shown = Shown("build\na.script\n", 0);
    if (!is_there_) GTEST_SKIP() << kNoConsole;
    if (shown.find("building a.script  [#") != shown.npos) break;
  }
  EXPECT_NE(std::string::npos, shown.find("building a.script  [#")) << shown;
  EXPECT_NE(std::string::npos, shown.find(" %  ")) << shown;
  EXPECT_NE(std::string::npos, shown.find("a.db: built with 1 table, "));
}

#endif

}  // namespace
}  // namespace tabwerk::test
