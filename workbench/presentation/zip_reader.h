// The members of a ZIP archive that is held in memory, as workbooks are one. The archive may be anyone's: what does not
// fit together is refused, and nothing is read beyond it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::workbench {

class ZipReader {
 public:
  // `bytes` stays as long as this. Throws std::invalid_argument for what is no archive, and for one that is encrypted or
  // larger than 4 GB.
  explicit ZipReader(std::string_view bytes);

  // The names of all members, in the archive's order.
  std::vector<std::string> names() const;
  // What the member holds; nothing when there is none of that name. Throws std::invalid_argument when it is damaged or
  // has more than `most` bytes.
  std::optional<std::string> member(std::string_view name, std::size_t most) const;

 private:
  struct Entry {
    std::string name;
    unsigned method = 0;
    std::size_t compressed = 0, size = 0, header = 0;
  };

  std::uint32_t number(std::size_t at, std::size_t bytes) const;

  std::string_view bytes_;
  std::vector<Entry> entries_;
};

}  // namespace quillon::workbench
