// What the tests of the endpoint share: bytes as people write them, and a wire without a socket.
#pragma once

#include <algorithm>
#include <charconv>
#include <deque>

#include "tests/workbench/tds/packets.h"

namespace quillon::tds::test {

// "81 01 00" as three bytes.
inline Bytes hex(std::string_view text) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += text[i] == ' ' ? 1 : 2) {
    if (text[i] == ' ') continue;
    unsigned value = 0;
    std::from_chars(text.data() + i, text.data() + i + 2, value, 16);
    bytes.push_back(static_cast<Byte>(value));
  }
  return bytes;
}

// ASCII as the hex of its UTF-16.
inline std::string wide(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string hexText;
  for (const char c : text) {
    const auto value = static_cast<unsigned char>(c);
    hexText += {digits[value >> 4U], digits[value & 15U], ' ', '0', '0', ' '};
  }
  return hexText;
}

// A client that has sent everything beforehand and hangs up. It gives no more than `piece` bytes at a time.
class BufferWire final : public Wire {
 public:
  explicit BufferWire(Bytes toRead, std::size_t piece = 3) : toRead_(std::move(toRead)), piece_(piece) {}

  std::size_t read(std::span<Byte> room) override {
    const std::size_t count = std::min({room.size(), piece_, toRead_.size() - position_});
    std::copy_n(toRead_.begin() + static_cast<std::ptrdiff_t>(position_), count, room.begin());
    position_ += count;
    return count;
  }
  void send(std::span<const Byte> packet) override { sent.emplace_back(packet.begin(), packet.end()); }

  std::vector<Bytes> sent;  // packets

 private:
  Bytes toRead_;
  std::size_t position_ = 0;
  std::size_t piece_;
};

// A message of one packet.
inline Bytes packetOf(MessageType type, const Bytes& data) {
  Bytes packet;
  putU8(packet, static_cast<Byte>(type));
  putU8(packet, 1);
  putU16HighFirst(packet, headerSize + data.size());
  putU32(packet, 0);
  putBytes(packet, data);
  return packet;
}

}  // namespace quillon::tds::test
