// The digest by which a page names the one style sheet that it lets in, and by which fingerprints of runs are known.
#pragma once

#include <string>
#include <string_view>

namespace quillon::workbench {

// SHA-256 of the bytes of `text`, in base64: 44 characters.
std::string sha256Base64(std::string_view text);
// The same in hexadecimal digits: 64 characters, letters in lower case.
std::string sha256Hexadecimal(std::string_view text);

}  // namespace quillon::workbench
