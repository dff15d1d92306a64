#include "tests/support/disk_model.h"

#include <algorithm>
#include <cassert>
#include <optional>
#include <set>

namespace tabwerk::test {
namespace {

using Kind = DiskStep::Kind;

// What becomes of the bytes of a file that were not synced.
enum class Fate : std::uint8_t {
  kKept,
  kDropped,
  kZeroed,      // the length is there, the bytes are zero
  kHalved,      // the file ends in the middle of them
  kSecondHalf,  // the first half is zero
};
constexpr Fate kFates[] = {Fate::kKept, Fate::kDropped, Fate::kZeroed,
                           Fate::kHalved, Fate::kSecondHalf};

using Content = std::vector<unsigned char>;

void WriteAt(Content* content, DiskStep const& step) {
  auto const offset = static_cast<std::size_t>(step.offset);
  content->resize(std::max(content->size(), offset + step.bytes.size()));
  std::copy(step.bytes.begin(), step.bytes.end(),
            content->begin() + step.offset);
}

struct File {
  Content synced;
  std::vector<DiskStep> unsynced;  // kWrite, kTruncate

  Content Current() const {
    auto content = synced;
    for (auto const& step : unsynced) {
      if (step.kind == Kind::kTruncate) {
        content.clear();
      } else {
        WriteAt(&content, step);
      }
    }
    return content;
  }

  // The current content where byte i is kept only for first <= i < end.
  Content Zeroed(std::size_t first, std::size_t end) const {
    auto content = Current();
    for (std::size_t i = 0; i < content.size(); ++i) {
      bool const was_there = i < synced.size() && synced[i] == content[i];
      if (!was_there && (i < first || i >= end)) content[i] = 0;
    }
    return content;
  }

  Content After(Fate fate) const {
    auto const current = Current();
    auto const middle =
        (std::min(synced.size(), current.size()) + current.size()) / 2;
    switch (fate) {
      case Fate::kKept:
        return current;
      case Fate::kZeroed:
        return Zeroed(0, 0);
      case Fate::kHalved:
        return {current.begin(),
                current.begin() + static_cast<std::ptrdiff_t>(middle)};
      case Fate::kSecondHalf:
        return Zeroed(middle, current.size());
      case Fate::kDropped:
        break;
    }
    return synced;
  }
};

// A change of names: `name` leads to `file`, `gone` does not lead to it any
// more.
struct NameChange {
  std::string name;
  std::string gone;
  std::size_t file;
};

using Names = std::map<std::string, std::size_t>;

void Apply(NameChange const& change, Names* names) {
  if (!change.gone.empty()) {
    auto const found = names->find(change.gone);
    if (found != names->end() && found->second == change.file) {
      names->erase(found);
    }
  }
  if (!change.name.empty()) (*names)[change.name] = change.file;
}

class Disk {
 public:
  Disk(FolderImage const& start, std::string folder)
      : folder_(std::move(folder)) {
    for (auto const& [name, bytes] : start) {
      synced_names_[name] = files_.size();
      files_.push_back({bytes, {}});
    }
    names_ = synced_names_;
  }

  void Do(DiskStep const& step);
  void AddStates(std::size_t step_count, LossStates* states) const;

 private:
  // The name in the folder, or nothing for a path elsewhere.
  std::optional<std::string> NameIn(std::string const& path) const {
    if (path.rfind(folder_, 0) != 0) return std::nullopt;
    auto name = path.substr(folder_.size());
    if (name.find_first_of("/\\") != std::string::npos) return std::nullopt;
    return name;
  }
  void Change(NameChange const& change) {
    Apply(change, &names_);
    unsynced_names_.push_back(change);
  }
  void AddContents(Names const& names, std::size_t step_count,
                   LossStates* states) const;

  std::string folder_;
  std::vector<File> files_;
  Names synced_names_;
  Names names_;  // as the program sees them
  std::vector<NameChange> unsynced_names_;
};

void Disk::Do(DiskStep const& step) {
  auto const name = NameIn(step.path);
  if (!name) return;
  if (step.kind == Kind::kSyncFolder) {
    synced_names_ = names_;
    unsynced_names_.clear();
    return;
  }
  if (step.kind == Kind::kCreate) {
    files_.push_back({});
    Change({*name, "", files_.size() - 1});
    return;
  }
  auto const file = names_.at(*name);
  if (step.kind == Kind::kRename) {
    Change({NameIn(step.target).value(), *name, file});
  } else if (step.kind == Kind::kDelete) {
    Change({"", *name, file});
  } else if (step.kind == Kind::kSync) {
    files_[file].synced = files_[file].Current();
    files_[file].unsynced.clear();
  } else {
    files_[file].unsynced.push_back(step);
  }
}

void Disk::AddStates(std::size_t step_count, LossStates* states) const {
  auto const count = unsynced_names_.size();
  assert(count < 16);
  std::set<Names> seen;
  for (std::size_t choice = 0; choice < (std::size_t{1} << count); ++choice) {
    auto names = synced_names_;
    for (std::size_t i = 0; i < count; ++i) {
      if ((choice >> i & 1) != 0) Apply(unsynced_names_[i], &names);
    }
    if (seen.insert(names).second) AddContents(names, step_count, states);
  }
}

void Disk::AddContents(Names const& names, std::size_t step_count,
                       LossStates* states) const {
  std::vector<FolderImage> images(1);
  for (auto const& [name, number] : names) {
    auto const& file = files_[number];
    std::set<Content> contents;
    for (auto const fate : kFates) contents.insert(file.After(fate));
    std::vector<FolderImage> longer;
    for (auto const& image : images) {
      for (auto const& content : contents) {
        longer.push_back(image);
        longer.back()[name] = content;
      }
    }
    images = std::move(longer);
  }
  states->ways += images.size();
  for (auto const& image : images) states->states[image] = step_count;
}

}  // namespace

LossStates StatesAfterPowerLoss(FolderImage const& start,
                                std::vector<DiskStep> const& steps,
                                std::string const& folder) {
  LossStates states;
  Disk disk(start, folder);
  disk.AddStates(0, &states);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    disk.Do(steps[i]);
    disk.AddStates(i + 1, &states);
  }
  return states;
}

}  // namespace tabwerk::test
