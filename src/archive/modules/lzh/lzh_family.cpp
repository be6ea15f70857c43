#include "archive/modules/lzh/lzh_family.h"

#include <memory>
#include <utility>

#include "archive/modules/common/library_versions.h"
#include "archive/modules/common/signature_scan.h"
#include "archive/modules/lzh/lzh_headers.h"
#include "archive/modules/lzh/lzh_reader.h"

namespace quendle::modules {
namespace {

std::optional<ArchiveInput> FindLzh(std::shared_ptr<const platform::InputFile> file, Reason*) {
  const ArchiveInput whole(std::move(file), 0);
  // The method stands behind two bytes of the header. Programs have such words in them too, without a header.
  const auto position = FindSignature(whole, {{"-lh", "-lz", "-pm"}, 2}, [&whole](std::uint64_t candidate) {
    const auto place = candidate == 0 ? HeaderPlace::kEntry : HeaderPlace::kInProgram;
    return ReadLzhHeader(whole, candidate, place).has_value();
  });
  if (!position) return std::nullopt;
  return whole.From(*position);
}

std::vector<Engine> LzhEngines(const ArchiveInput&) {
  return {{"lzh", &OpenLzh}};
}

std::string LzhLibraries() {
  return kLhasaVersion;
}

}  // namespace

const Family kLzhFamily = {"LZH", kLzhDialect, &FindLzh, &LzhEngines, nullptr, &LzhLibraries};

}  // namespace quendle::modules
