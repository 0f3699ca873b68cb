// What a client says before its first batch, and what it is answered to the first of it.
#pragma once

#include "tests/workbench/tds/bytes.h"

namespace quillon::tds {

// How a client wants what goes over the wire encrypted.
enum class Encryption : Byte { off = 0, on = 1, notSupported = 2, required = 3 };

struct PreLogin {
  // Off when the client does not say.
  Encryption encryption = Encryption::off;
};

// Throws ProtocolError.
PreLogin readPreLogin(std::span<const Byte> data);
// That nothing is encrypted here.
Bytes preLoginReply();

struct Login {
  std::uint32_t version = 0;     // of the protocol, 0x74000004 for 7.4
  std::uint32_t packetSize = 0;  // that the client wishes; 0 leaves it to the server
  std::string user, password, application, database;
};

inline constexpr std::uint32_t version74 = 0x74000004;

// Throws ProtocolError.
Login readLogin(std::span<const Byte> data);

// The text of a batch, behind its headers. Throws ProtocolError.
std::string readBatch(std::span<const Byte> data);

}  // namespace quillon::tds
