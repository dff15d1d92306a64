// The string store of one part of a table.
#ifndef TABWERK_SCHEMA_STRING_MEMORY_H
#define TABWERK_SCHEMA_STRING_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/block.h"
#include "schema/text_scan.h"

// A sequence of texts of 16-bit units, each followed by a NUL unit.
//
// A text is named by the index of its first unit.  An index equal to the
// number of units names the empty text; one beyond it, or below 0, names
// nothing.  A store whose last text has no NUL is read as if it had one.
// The store owns its buffer; views into it live until the next change.
class DBStringMemory {
 public:
  DBStringMemory() = default;
  DBStringMemory(DBStringMemory const&) = delete;
  DBStringMemory& operator=(DBStringMemory const&) = delete;
  virtual ~DBStringMemory() = default;

  // Number of 16-bit units in use.
  std::uint32_t count() const noexcept {
    return static_cast<std::uint32_t>(units_.size() / sizeof(char16_t));
  }
  // The units as bytes, 2 × count() of them.
  std::byte const* data() const noexcept { return units_.data(); }

  // Text at index, without its NUL; nothing when there is none.
  std::optional<std::u16string_view> Text(std::int32_t index) const noexcept {
    auto const units = UnitsFrom(index);
    if (!units) return std::nullopt;
    return tabwerk::ScanText(*units).text;
  }
  // All units from index on, the text at index and those behind it; nothing
  // when there is no text at index.
  std::optional<std::u16string_view> UnitsFrom(
      std::int32_t index) const noexcept {
    if (index < 0) return std::nullopt;
    auto const first = static_cast<std::size_t>(index);
    std::size_t const units = count();
    if (first > units) return std::nullopt;
    // An empty store has no buffer at all.
    if (first == units) return std::u16string_view();
    auto const* const start =
        static_cast<char16_t const*>(static_cast<void const*>(units_.data()));
    return std::u16string_view(start + first, units - first);
  }

  // Replaces the content by a copy of other's; false, and no change, without
  // memory.
  [[nodiscard]] bool CopyFrom(DBStringMemory const& other);
  // Replaces the content by this buffer, whose size is even.
  void Adopt(tabwerk::platform::Block units) noexcept;
  // Appends a text and a NUL; its index is what count() was.  False, and no
  // change, without memory or when the index would not fit into 31 bits.
  [[nodiscard]] bool Append(std::u16string_view text);
  // Appends so many empty texts; what count() was is the index of the first
  // one.  Fails as Append.
  [[nodiscard]] bool AppendEmpty(std::uint32_t count);
  // Overwrites the text at index in place; text must not be longer than it.
  // Units behind the new NUL keep their content.
  void Overwrite(std::int32_t index, std::u16string_view text) noexcept;
  // Takes back the units from count on (undoes Append).
  void Truncate(std::uint32_t count) noexcept;

 private:
  tabwerk::platform::Block units_;
};

#endif  // TABWERK_SCHEMA_STRING_MEMORY_H
