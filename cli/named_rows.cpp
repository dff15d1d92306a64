#include "cli/named_rows.h"

#include <algorithm>
#include <utility>

#include "cli/text.h"
#include "ztypes.h"

namespace tabwerk::tool {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

std::string FromUtf16(std::string_view bytes) {
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    auto const low = static_cast<unsigned char>(bytes[i]);
    auto const high = static_cast<unsigned char>(bytes[i + 1]);
    units += static_cast<char16_t>(low | high << 8);
  }
  return zWString(units).toUtf8();
}

}  // namespace

TextPlace PlaceFinder::At(std::size_t offset) {
  for (; offset_ < offset && offset_ < text_.size(); ++offset_) {
    if (text_[offset_] == '\n') {
      ++place_.line;
      place_.character = 1;
    } else if ((static_cast<unsigned char>(text_[offset_]) & 0xC0) != 0x80) {
      ++place_.character;
    }
  }
  return place_;
}

std::optional<NamedForm> FormOfWord(std::string const& word) {
  if (word == "csv") return NamedForm::kCsv;
  if (word == "tsv") return NamedForm::kTsv;
  if (word == "json") return NamedForm::kJson;
  if (word == "ndjson" || word == "jsonl") return NamedForm::kNdjson;
  return std::nullopt;
}

std::optional<NamedForm> FormOfName(std::string const& path) {
  std::size_t const dot = path.rfind('.');
  if (dot == path.npos) return std::nullopt;
  std::string extension = path.substr(dot + 1);
  for (char& it : extension) {
    if (it >= 'A' && it <= 'Z') it = static_cast<char>(it - 'A' + 'a');
  }
  return FormOfWord(extension);
}

std::optional<Problem> DecodeText(std::string const& file, std::string bytes,
                                  std::string* text) {
  if (bytes.starts_with(kUtf16Mark) && bytes.size() % 2 == 0) {
    *text = FromUtf16(std::string_view(bytes).substr(kUtf16Mark.size()));
    return std::nullopt;
  }
  if (bytes.starts_with(kUtf8Mark)) bytes.erase(0, kUtf8Mark.size());
  std::string const sound = zWString::fromUtf8(bytes).toUtf8();
  *text = std::move(bytes);
  if (sound == *text) return std::nullopt;
  auto const stop =
      std::mismatch(text->begin(), text->end(), sound.begin(), sound.end());
  TextPlace const place = PlaceFinder(*text).At(
      static_cast<std::size_t>(stop.first - text->begin()));
  return Problem{TW(630), Place(file, place.line, place.character),
                 "the text is not UTF-8 here",
                 "save it as UTF-8; nothing was changed"};
}

std::optional<Problem> ReadNamedRows(NamedForm form, std::string const& file,
                                     std::string_view text, char separator,
                                     NamedRows* rows) {
  bool const is_json = form == NamedForm::kJson || form == NamedForm::kNdjson;
  if (is_json) return ReadJson(form, file, text, rows);
  return ReadDelimited(form, file, text, separator, rows);
}

std::string NamedText(NamedForm form, std::string const& head,
                      std::vector<std::string> const& sources) {
  bool const is_array = form == NamedForm::kJson;
  std::string text = is_array ? "[\n" : head.empty() ? "" : head + "\n";
  for (std::size_t i = 0; i < sources.size(); ++i) {
    bool const goes_on = is_array && i + 1 < sources.size();
    text += sources[i] + (goes_on ? ",\n" : "\n");
  }
  return is_array ? text + "]\n" : text;
}

}  // namespace tabwerk::tool
