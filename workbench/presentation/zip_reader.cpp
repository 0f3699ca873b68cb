#include "workbench/presentation/zip_reader.h"

#include <zlib.h>

#include <algorithm>
#include <limits>

#include "workbench/messages/keeping.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench {

namespace {

constexpr std::uint32_t endMark = 0x06054b50, entryMark = 0x02014b50, memberMark = 0x04034b50;
constexpr std::size_t endLength = 22, entryLength = 46, memberLength = 30;
constexpr unsigned stored = 0, deflated = 8;

[[noreturn]] void refuse() {
  throw InputError(messages::damagedArchive());
}

class Inflation {
 public:
  Inflation() {
    if (inflateInit2(&stream_, -MAX_WBITS) != Z_OK) refuse();
  }
  Inflation(const Inflation&) = delete;
  Inflation& operator=(const Inflation&) = delete;
  ~Inflation() { inflateEnd(&stream_); }

  std::string all(std::string_view compressed, std::size_t size) {
    std::string plain(size, '\0');
    // zlib only reads what it is given.
    stream_.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(compressed.data()));  // NOLINT
    stream_.avail_in = static_cast<uInt>(compressed.size());
    stream_.next_out = reinterpret_cast<Bytef*>(plain.data());  // NOLINT
    stream_.avail_out = static_cast<uInt>(plain.size());
    if (inflate(&stream_, Z_FINISH) != Z_STREAM_END || stream_.avail_out != 0) refuse();
    return plain;
  }

 private:
  z_stream stream_{};
};

}  // namespace

std::uint32_t ZipReader::number(std::size_t at, std::size_t bytes) const {
  if (at > bytes_.size() || bytes > bytes_.size() - at) refuse();
  std::uint32_t result = 0;
  for (std::size_t i = bytes; i > 0; --i)
    result = result << 8U | static_cast<unsigned char>(bytes_[at + i - 1]);
  return result;
}

ZipReader::ZipReader(std::string_view bytes) : bytes_(bytes) {
  constexpr std::size_t longestComment = 0xffff;
  if (bytes.size() < endLength || bytes.size() > std::numeric_limits<std::uint32_t>::max()) refuse();
  std::size_t end = bytes.size() - endLength;
  const std::size_t first = end > longestComment ? end - longestComment : 0;
  while (number(end, 4) != endMark) {
    if (end == first) refuse();
    --end;
  }
  const std::size_t count = number(end + 10, 2);
  std::size_t at = number(end + 16, 4);
  for (std::size_t i = 0; i < count; ++i) {
    constexpr unsigned encrypted = 1;
    if (number(at, 4) != entryMark || (number(at + 8, 2) & encrypted) != 0) refuse();
    const std::size_t nameLength = number(at + 28, 2);
    if (at + entryLength > bytes.size() || nameLength > bytes.size() - at - entryLength) refuse();
    entries_.push_back({.name = std::string(bytes.substr(at + entryLength, nameLength)),
                        .method = number(at + 10, 2),
                        .compressed = number(at + 20, 4),
                        .size = number(at + 24, 4),
                        .header = number(at + 42, 4)});
    at += entryLength + nameLength + number(at + 30, 2) + number(at + 32, 2);
  }
}

std::vector<std::string> ZipReader::names() const {
  std::vector<std::string> names;
  for (const Entry& entry : entries_)
    names.push_back(entry.name);
  return names;
}

std::optional<std::string> ZipReader::member(std::string_view name, std::size_t most) const {
  const auto entry = std::ranges::find(entries_, name, &Entry::name);
  if (entry == entries_.end()) return {};
  if (entry->size > most || number(entry->header, 4) != memberMark) refuse();
  const std::size_t begin =
      entry->header + memberLength + number(entry->header + 26, 2) + number(entry->header + 28, 2);
  if (begin > bytes_.size() || entry->compressed > bytes_.size() - begin) refuse();
  const std::string_view content = bytes_.substr(begin, entry->compressed);
  if (entry->method == stored) {
    if (entry->size != entry->compressed) refuse();
    return std::string(content);
  }
  // So much at most comes of a byte: what promises more gets no memory for it.
  constexpr std::size_t mostOfAByte = 1032;
  if (entry->method != deflated || entry->size / mostOfAByte > entry->compressed) refuse();
  return Inflation().all(content, entry->size);
}

}  // namespace quillon::workbench
