#include "archive/modules/rar/content_sums.h"

#include <algorithm>

namespace quendle::modules {

void ContentSums::Add(std::string_view bytes) {
  size_ += bytes.size();
  if (file_.is_rotating_sum) {
    rotating_.Add(bytes);
  } else if (file_.crc) {
    crc_.Add(bytes);
  }
  if (!file_.blake2sp.empty()) blake2sp_.Add(bytes);
}

Reason ContentSums::Check(const Rar5Keys* keys) const {
  if (file_.size && size_ != *file_.size)
    return size_ < *file_.size ? why::kFewerBytes(size_, *file_.size) : why::kMoreBytes(*file_.size);
  if (file_.crc) {
    const std::uint32_t plain = file_.is_rotating_sum ? rotating_.Value() : crc_.Value();
    if (*file_.crc != (keys != nullptr ? KeyedCrc32(*keys, plain) : plain)) return why::kWrongChecksum;
  }
  if (!file_.blake2sp.empty()) {
    const Rar5Digest plain = blake2sp_.Value();
    const Rar5Digest digest = keys != nullptr ? KeyedBlake2sp(*keys, plain) : plain;
    const auto matches = [](char stored, std::uint8_t byte) {
      return static_cast<std::uint8_t>(stored) == byte;
    };
    if (!std::equal(file_.blake2sp.begin(), file_.blake2sp.end(), digest.begin(), digest.end(), matches))
      return why::kWrongChecksum;
  }
  return {};
}

}  // namespace quendle::modules
