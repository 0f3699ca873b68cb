// Messages as they go over the wire: in packets, each with a header that says what it is, how long, and whether it is the
// last of its message.
#pragma once

#include <optional>

#include "tests/workbench/tds/bytes.h"

namespace quillon::tds {

// What bytes come from and go to: a socket, or a test's buffer. One thread may read while another writes.
class Wire {
 public:
  virtual ~Wire() = default;
  // Reads at most as many bytes as there is room for, at least one; 0 when the other side has closed the connection.
  virtual std::size_t read(std::span<Byte> room) = 0;
  // Sends one packet. Throws Disconnected when there is no connection.
  virtual void send(std::span<const Byte> packet) = 0;
};

// The connection has ended, with nothing more to be said on it.
class Disconnected : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a message is, as the first byte of its packets says.
enum class MessageType : Byte { batch = 1, procedure = 3, reply = 4, attention = 6, login = 16, preLogin = 18 };

struct Message {
  MessageType type = MessageType::batch;  // or another number
  Bytes data;
  // Its sender has thought better of it: nothing is to be done.
  bool isWithdrawn = false;
};

inline constexpr std::size_t headerSize = 8;
// Sizes of packets, with their headers, that can be agreed on, and the one before anything is agreed.
inline constexpr std::size_t leastPacketSize = 512, greatestPacketSize = 32767, firstPacketSize = 4096;
// No batch that a client may send is longer.
inline constexpr std::size_t longestMessage = std::size_t{64} << 20U;

// The next message; nullopt when the other side has closed the connection between two messages. Throws ProtocolError for
// a packet that is shorter than its header, a message that changes its type within or is too long, and for a connection
// that ends within a message.
std::optional<Message> readMessage(Wire& wire);

// Sends one message of the server, packet by packet: each goes as soon as it is full.
class ReplyWriter {
 public:
  // `packetSize` counts the header. The wire stays as long as this.
  ReplyWriter(Wire& wire, std::size_t packetSize, std::uint16_t session)
      : wire_(wire), packetSize_(packetSize), session_(session) {}

  // Both throw Disconnected.
  void write(std::span<const Byte> data);
  void finish();

 private:
  void sendPacket(std::span<const Byte> data, bool isLast);

  Wire& wire_;
  std::size_t packetSize_;
  std::uint16_t session_;
  Byte number_ = 1;
  Bytes waiting_;  // never more than fits into a packet
};

}  // namespace quillon::tds
