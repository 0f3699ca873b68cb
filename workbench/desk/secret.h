// Secrets that nobody guesses.
#pragma once

#include <string>
#include <string_view>

namespace quillon::workbench::desk {

// 256 bits from the system's own source, as 64 hexadecimal digits. Throws std::runtime_error when the system gives none.
std::string newSecret();

// Whether `given` is `secret`, in a time that tells nothing of how much of it is right.
bool isSecret(std::string_view given, std::string_view secret) noexcept;

}  // namespace quillon::workbench::desk
