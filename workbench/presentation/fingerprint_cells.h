// How cells of a workbook hold the fingerprint of a run: "quillon-fingerprint 3F2A91BC02DE77F1 1/2 {...", with the digest, the
// number of the part and how many there are. A spreadsheet that saves the workbook may move the texts of cells, not change
// them.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillon::workbench {

inline constexpr std::string_view cellMark = "quillon-fingerprint ";
// A cell holds 32,767 characters, with what stands before the part.
inline constexpr std::size_t cellPartLength = 30'000;

}  // namespace quillon::workbench
