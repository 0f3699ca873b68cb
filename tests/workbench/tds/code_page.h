// Texts of varchar columns, which go over the wire in the code page of their collation.
#pragma once

#include "tests/workbench/tds/bytes.h"

namespace quillon::tds {

// UTF-8 in code page 936, that of Chinese_PRC_CI_AS. As on a server, a character that the page does not have is a question
// mark.
Bytes codePageOf(std::string_view text);

}  // namespace quillon::tds
