#include "workbench/desk/secret.h"

#ifdef _WIN32
#include <windows.h>

#include <bcrypt.h>
#else
#include <unistd.h>
#endif

#include <array>
#include <cstddef>
#include <stdexcept>
#include "workbench/messages/desk.h"
#include "workbench/platform/user_error.h"

namespace quillon::workbench::desk {

namespace {

using Bytes = std::array<unsigned char, 32>;

#ifdef _WIN32
bool fill(Bytes& bytes) {
  return BCryptGenRandom(nullptr, bytes.data(), static_cast<ULONG>(bytes.size()), BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}
#else
bool fill(Bytes& bytes) {
  return getentropy(bytes.data(), bytes.size()) == 0;
}
#endif

}  // namespace

std::string newSecret() {
  Bytes bytes{};
  if (!fill(bytes)) throw UserError(messages::noRandomNumbers());
  std::string text;
  for (const unsigned char byte : bytes) {
    for (const int digit : {byte / 16, byte % 16})
      text += "0123456789abcdef"[digit];
  }
  return text;
}

bool isSecret(std::string_view given, std::string_view secret) noexcept {
  // Its length is no secret; a secret that has been used up is empty and fits nothing.
  if (secret.empty() || given.size() != secret.size()) return false;
  // The compiler must not find out that the loop could be left early.
  volatile unsigned char difference = 0;
  for (std::size_t i = 0; i < secret.size(); ++i)
    difference = static_cast<unsigned char>(difference | (given[i] ^ secret[i]));
  return difference == 0;
}

}  // namespace quillon::workbench::desk
