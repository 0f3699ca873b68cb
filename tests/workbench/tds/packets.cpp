#include "tests/workbench/tds/packets.h"

#include <algorithm>
#include <array>

namespace quillon::tds {

namespace {

constexpr Byte isLastOfMessage = 0x01;
constexpr Byte withdrawsMessage = 0x02;

// Fills all of `room`; false when the connection is closed before the first byte.
bool readAll(Wire& wire, std::span<Byte> room) {
  bool begun = false;
  while (!room.empty()) {
    const std::size_t count = wire.read(room);
    if (count == 0 && !begun) return false;
    if (count == 0) throw ProtocolError("the connection ends within a packet");
    room = room.subspan(count);
    begun = true;
  }
  return true;
}

}  // namespace

std::optional<Message> readMessage(Wire& wire) {
  Message message;
  for (bool isFirst = true, isLast = false; !isLast; isFirst = false) {
    std::array<Byte, headerSize> header{};
    if (!readAll(wire, header)) {
      if (isFirst) return std::nullopt;
      throw ProtocolError("the connection ends within a message");
    }
    ByteReader reader(header);
    const auto type = static_cast<MessageType>(reader.u8());
    const Byte status = reader.u8();
    const std::size_t length = reader.u16HighFirst();
    if (!isFirst && type != message.type) throw ProtocolError("a message changes its type");
    if (length < headerSize) throw ProtocolError("a packet is shorter than its header");
    const std::size_t before = message.data.size();
    const std::size_t more = length - headerSize;
    if (before + more > longestMessage) throw ProtocolError("a message is too long");
    message.type = type;
    message.data.resize(before + more);
    if (!readAll(wire, std::span(message.data).subspan(before)) && more > 0)
      throw ProtocolError("the connection ends within a packet");
    isLast = (status & isLastOfMessage) != 0;
    message.isWithdrawn = (status & withdrawsMessage) != 0;
  }
  return message;
}

void ReplyWriter::write(std::span<const Byte> data) {
  const std::size_t room = packetSize_ - headerSize;
  while (waiting_.size() + data.size() > room) {
    const std::size_t fits = room - waiting_.size();
    putBytes(waiting_, data.first(fits));
    data = data.subspan(fits);
    sendPacket(waiting_, false);
    waiting_.clear();
  }
  putBytes(waiting_, data);
}

void ReplyWriter::finish() {
  sendPacket(waiting_, true);
  waiting_.clear();
}

void ReplyWriter::sendPacket(std::span<const Byte> data, bool isLast) {
  Bytes packet;
  packet.reserve(headerSize + data.size());
  putU8(packet, static_cast<Byte>(MessageType::reply));
  putU8(packet, isLast ? isLastOfMessage : 0);
  putU16HighFirst(packet, headerSize + data.size());
  putU16HighFirst(packet, session_);
  putU8(packet, number_++);
  putU8(packet, 0);
  putBytes(packet, data);
  wire_.send(packet);
}

}  // namespace quillon::tds
