// The digest by which a page names the one style sheet that it lets in.
#pragma once

#include <string>
#include <string_view>

namespace quillon::workbench {

// SHA-256 of the bytes of `text`, in base64: 44 characters.
std::string sha256Base64(std::string_view text);

}  // namespace quillon::workbench
