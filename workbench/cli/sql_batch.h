// Batches of a T-SQL script.
#pragma once

#include <string_view>

#include "frame/text.h"

namespace quillon::workbench {

// Whether the line ends a batch and says that it is to run: it holds only `go`, in any letter case.
inline bool endsBatch(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return equalIgnoringCase(trimBlanks(line), "go");
}

inline bool isBlank(std::string_view batch) {
  return batch.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

}  // namespace quillon::workbench
