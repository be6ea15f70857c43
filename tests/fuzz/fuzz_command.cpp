// Command lines in every dialect, and response files.
#include <cstdint>
#include <cstdlib>

#include "archive/modules/common/dialect.h"
#include "archive/modules/common/response_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quendle::modules;
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (const Dialect* dialect : {&kZipDialect, &kLzhDialect, &kCabDialect, &kRarDialect, &kSevenZipDialect}) {
    Request request;
    quendle::Reason problem;
    const bool read = ParseCommandLine(*dialect, text, &request, &problem);
    if (read != problem.empty() || (read && (request.archive.empty() || request.folder.empty())))
      std::abort();
  }
  for (const std::string& name : ParseResponseFile(text)) {
    if (name.empty() || name != ComparableName(name)) std::abort();
  }
  return 0;
}
