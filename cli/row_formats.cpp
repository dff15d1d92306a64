#include "cli/row_formats.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/text.h"

namespace tabwerk::tool {
namespace {

// Lines of values with something between two.
class Delimited : public RowFormat {
 public:
  using Quote = std::string (*)(std::string const& text);

  Delimited(OutFile& file, char separator, Quote quote)
      : file_(file), separator_(separator), quote_(quote) {}

  void Begin(std::vector<ColumnHead> const& columns) override {
    std::vector<Cell> names;
    names.reserve(columns.size());
    for (ColumnHead const& column : columns) names.emplace_back(column.name);
    Add(names);
  }
  void Add(std::vector<Cell> const& cells) override {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) line += separator_;
      line += quote_(CellText(cells[i]));
    }
    // A line without anything on it would be no row.
    if (line.empty() && separator_ == ',') line = "\"\"";
    file_.Write(line + "\n");
  }
  void End() override {}

 private:
  OutFile& file_;
  char separator_;
  Quote quote_;
};

std::string QuoteForCsv(std::string const& text) {
  if (text.find_first_of(",\"\r\n") == text.npos) return text;
  std::string quoted = "\"";
  for (char const character : text) {
    if (character == '"') quoted += '"';
    quoted += character;
  }
  return quoted + "\"";
}

std::string QuoteForTsv(std::string const& text) { return Escape(text); }

nlohmann::json ToJson(Cell const& cell) {
  struct Visitor {
    nlohmann::json operator()(std::monostate) const { return nullptr; }
    nlohmann::json operator()(std::int64_t value) const { return value; }
    nlohmann::json operator()(double value) const { return value; }
    nlohmann::json operator()(std::string const& value) const { return value; }
  };
  return std::visit(Visitor(), cell);
}

std::string JsonText(nlohmann::json const& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

// As they are written; a second column of one name gets another key.
std::vector<std::string> KeysOf(std::vector<ColumnHead> const& columns) {
  std::vector<std::string> keys;
  keys.reserve(columns.size());
  for (ColumnHead const& column : columns) keys.push_back(column.name);
  keys = UniqueNames(std::move(keys));
  for (std::string& key : keys) key = JsonText(key);
  return keys;
}

std::string ObjectOf(std::vector<std::string> const& keys,
                     std::vector<Cell> const& cells) {
  std::string text;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    text += i == 0 ? "{" : ", ";
    text += keys[i] + ": " + JsonText(ToJson(cells[i]));
  }
  return cells.empty() ? "{}" : text + "}";
}

class Json : public RowFormat {
 public:
  Json(OutFile& file, bool as_array) : file_(file), as_array_(as_array) {}

  void Begin(std::vector<ColumnHead> const& columns) override {
    keys_ = KeysOf(columns);
    if (as_array_) file_.Write("[");
  }
  void Add(std::vector<Cell> const& cells) override {
    std::string text = as_array_ ? (is_first_ ? "\n  " : ",\n  ") : "";
    is_first_ = false;
    text += ObjectOf(keys_, cells);
    if (!as_array_) text += "\n";
    file_.Write(text);
  }
  void End() override {
    if (as_array_) file_.Write(is_first_ ? "]\n" : "\n]\n");
  }

 private:
  OutFile& file_;
  bool as_array_;
  bool is_first_ = true;
  std::vector<std::string> keys_;
};

std::string QuoteForMarkdown(std::string const& text) {
  std::size_t const line_feed = text.find('\n');
  if (line_feed != text.npos) {
    std::size_t const end = line_feed > 0 && text[line_feed - 1] == '\r'
                                ? line_feed - 1
                                : line_feed;
    return QuoteForMarkdown(text.substr(0, end)) + "<br>" +
           QuoteForMarkdown(text.substr(line_feed + 1));
  }
  std::string quoted;
  for (char const character : OneBlankEach(text)) {
    if (std::string_view("\\`*_[]<>|&~$").find(character) !=
        std::string::npos) {
      quoted += '\\';
    }
    quoted += character;
  }
  return quoted;
}

class Markdown : public RowFormat {
 public:
  explicit Markdown(OutFile& file) : file_(file) {}

  void Begin(std::vector<ColumnHead> const& columns) override {
    std::string names = "|";
    std::string rules = "|";
    for (ColumnHead const& column : columns) {
      names += " " + QuoteForMarkdown(column.name) + " |";
      rules += column.type == CellType::kText ? " --- |" : " ---: |";
    }
    file_.Write(names + "\n" + rules + "\n");
  }
  void Add(std::vector<Cell> const& cells) override {
    std::string line = "|";
    for (Cell const& cell : cells) {
      line += " " + QuoteForMarkdown(CellText(cell)) + " |";
    }
    file_.Write(line + "\n");
  }
  void End() override {}

 private:
  OutFile& file_;
};

class List : public RowFormat {
 public:
  List(OutFile& file, std::optional<std::size_t> width)
      : file_(file), terminal_width_(width) {}

  void Begin(std::vector<ColumnHead> const& columns) override {
    std::size_t widest = 0;
    for (ColumnHead const& column : columns) {
      labels_.push_back(Escape(column.name));
      widest = std::max(widest, DisplayWidth(labels_.back()));
    }
    label_width_ = widest + 2;
    for (std::string& label : labels_) {
      label.append(label_width_ - DisplayWidth(label), ' ');
    }
  }
  void Add(std::vector<Cell> const& cells) override {
    std::string text = is_first_ ? "" : "\n";
    is_first_ = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      std::string line = labels_[i] + Fit(Escape(CellText(cells[i])));
      line.erase(line.find_last_not_of(' ') + 1);
      text += line + "\n";
    }
    file_.Write(text);
  }
  void End() override {}

 private:
  std::string Fit(std::string const& value) const {
    if (!terminal_width_) return value;
    std::size_t const room =
        *terminal_width_ - std::min(*terminal_width_, label_width_);
    return CutToWidth(value, std::max(room, kSmallestCut));
  }

  OutFile& file_;
  std::optional<std::size_t> terminal_width_;
  std::size_t label_width_ = 0;
  std::vector<std::string> labels_;
  bool is_first_ = true;
};

}  // namespace

std::unique_ptr<RowFormat> MakeCsv(OutFile& file) {
  return std::make_unique<Delimited>(file, ',', &QuoteForCsv);
}

std::unique_ptr<RowFormat> MakeTsv(OutFile& file) {
  return std::make_unique<Delimited>(file, '\t', &QuoteForTsv);
}

std::unique_ptr<RowFormat> MakeJson(OutFile& file, bool as_array) {
  return std::make_unique<Json>(file, as_array);
}

std::string JsonObject(std::vector<ColumnHead> const& columns,
                       std::vector<Cell> const& cells) {
  return ObjectOf(KeysOf(columns), cells);
}

std::unique_ptr<RowFormat> MakeMarkdown(OutFile& file) {
  return std::make_unique<Markdown>(file);
}

std::unique_ptr<RowFormat> MakeList(OutFile& file,
                                    std::optional<std::size_t> width) {
  return std::make_unique<List>(file, width);
}

}  // namespace tabwerk::tool
