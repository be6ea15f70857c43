// A family of archives whose engines read what a test has put down.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "archive/modules/common/family.h"

namespace quendle::test {

struct ScriptedEntry {
  std::string path;
  std::string content;
  modules::ReadStatus ends = modules::ReadStatus::kEnd;  // the answer after the content
  modules::EntryKind kind = modules::EntryKind::kFile;
  std::string link_target{};
  std::int64_t write_time = 1'000'000'000;
  std::optional<std::uint64_t> declared_size{};  // none: that of the content
  std::string password{};                        // of its content; empty: that of the archive
};

struct ScriptedArchive {
  std::vector<ScriptedEntry> entries;
  modules::ReadStatus ends = modules::ReadStatus::kEnd;
  std::string password{};    // of every content; empty: none
  const char* missing = "";  // why the engine cannot be had
};

// What the two engines of ScriptedFamily read.
inline ScriptedArchive g_first_engine;
inline std::optional<ScriptedArchive> g_second_engine;  // none: there is only one

class ScriptedReader : public modules::EntryReader {
 public:
  ScriptedReader(const ScriptedArchive& archive, modules::ReaderOptions options)
      : archive_(archive), options_(std::move(options)) {}

  modules::ReadStatus NextEntry(modules::Entry* entry) override {
    if (next_ == archive_.entries.size()) return archive_.ends;
    const ScriptedEntry& scripted = archive_.entries[next_++];
    *entry = modules::Entry();
    entry->path = scripted.path;
    entry->kind = scripted.kind;
    entry->link_target = scripted.link_target;
    if (scripted.ends == modules::ReadStatus::kEnd)
      entry->size = scripted.declared_size.value_or(scripted.content.size());
    entry->attributes.write_time = platform::EntryTime{scripted.write_time, 0};
    given_ = false;
    return modules::ReadStatus::kOk;
  }

  modules::ReadStatus ReadContent(std::string_view* piece) override {
    const ScriptedEntry& entry = archive_.entries[next_ - 1];
    const std::string& password = entry.password.empty() ? archive_.password : entry.password;
    if (!password.empty() && options_.password() != password) return modules::ReadStatus::kPassword;
    if (given_ || entry.content.empty()) return entry.ends;
    given_ = true;
    *piece = entry.content;
    return modules::ReadStatus::kOk;
  }

  const Reason& Problem() const override { return reason_; }

 private:
  const ScriptedArchive& archive_;
  modules::ReaderOptions options_;
  std::size_t next_ = 0;
  bool given_ = false;
  Reason reason_{"scripted"};
};

inline std::unique_ptr<modules::EntryReader> OpenFirst(const modules::ArchiveInput&,
                                                       const modules::ReaderOptions& options, Reason*) {
  return std::make_unique<ScriptedReader>(g_first_engine, options);
}

inline std::unique_ptr<modules::EntryReader> OpenSecond(const modules::ArchiveInput&,
                                                        const modules::ReaderOptions& options,
                                                        Reason* reason) {
  *reason = Reason(g_second_engine->missing);
  if (!reason->empty()) return nullptr;
  return std::make_unique<ScriptedReader>(*g_second_engine, options);
}

inline std::vector<modules::Engine> ScriptedEngines(const modules::ArchiveInput&) {
  std::vector<modules::Engine> engines = {{"first", &OpenFirst}};
  if (g_second_engine) engines.push_back({"second", &OpenSecond});
  return engines;
}

// Files that begin with "archive"; "archive of two" lacks its second volume.
inline std::optional<modules::ArchiveInput> FindScripted(std::shared_ptr<const platform::InputFile> file,
                                                         Reason* reason) {
  std::string head(14, '\0');
  std::size_t got = 0;
  if (!file->ReadAt(0, head.data(), head.size(), &got).ok() || !head.starts_with("archive")) return {};
  if (head == "archive of two") {
    *reason = why::kVolumeMissing("x.002");
    return {};
  }
  return modules::ArchiveInput(std::move(file), 0);
}

inline const modules::Family kScriptedFamily = {"SCRIPTED",    modules::kZipDialect,
                                                &FindScripted, &ScriptedEngines,
                                                nullptr,       [] { return std::string("scripts 日本"); }};

}  // namespace quendle::test
