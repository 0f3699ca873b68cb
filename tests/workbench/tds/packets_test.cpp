#include "tests/workbench/tds/packets.h"

#include <gtest/gtest.h>

#include "tests/workbench/tds/test_bytes.h"

namespace quillon::tds {
namespace {

using test::BufferWire;
using test::hex;

TEST(TdsPackets, AMessageOfOnePacket) {
  BufferWire wire(hex("01 01 00 0b 00 00 01 00 61 62 63"));
  const auto message = readMessage(wire);
  ASSERT_TRUE(message);
  EXPECT_EQ(message->type, MessageType::batch);
  EXPECT_EQ(message->data, hex("61 62 63"));
  EXPECT_FALSE(message->isWithdrawn);
  EXPECT_FALSE(readMessage(wire)) << "the client has hung up";
}

TEST(TdsPackets, AMessageOfSeveralPacketsAndAnEmptyOne) {
  BufferWire wire(hex("01 00 00 0a 00 00 01 00 61 62  01 01 00 09 00 00 02 00 63  06 01 00 08 00 00 01 00"));
  EXPECT_EQ(readMessage(wire)->data, hex("61 62 63"));
  const auto attention = readMessage(wire);
  ASSERT_TRUE(attention);
  EXPECT_EQ(attention->type, MessageType::attention);
  EXPECT_TRUE(attention->data.empty());
}

TEST(TdsPackets, AWithdrawnMessage) {
  BufferWire wire(hex("01 00 00 09 00 00 01 00 61  01 03 00 08 00 00 02 00"));
  EXPECT_TRUE(readMessage(wire)->isWithdrawn);
}

TEST(TdsPackets, WhatIsNoMessage) {
  for (const char* const bytes : {
           "01",                                                     // ends within the header
           "01 01 00 0b 00 00 01 00 61",                             // within the packet
           "01 01 00 0b 00 00 01 00",                                // before its data
           "01 00 00 09 00 00 01 00 61",                             // before the last packet
           "01 01 00 07 00 00 01 00",                                // shorter than its header
           "01 01 00 00 00 00 01 00",                                // without a length
           "01 00 00 09 00 00 01 00 61 03 01 00 09 00 00 02 00 62",  // becomes another
       }) {
    BufferWire wire(hex(bytes));
    EXPECT_THROW(readMessage(wire), ProtocolError) << bytes;
  }
}

TEST(TdsPackets, AMessageWithoutAnEndIsRefused) {
  Bytes endless;
  const Bytes packet = hex("01 00 ff ff 00 00 01 00");
  while (endless.size() <= longestMessage + 0x20000) {
    putBytes(endless, packet);
    endless.resize(endless.size() + 0xffff - headerSize);
  }
  BufferWire wire(std::move(endless), 0xffff);
  EXPECT_THROW(readMessage(wire), ProtocolError);
}

TEST(TdsPackets, AReplyThatFitsIsOnePacket) {
  BufferWire wire({});
  ReplyWriter reply(wire, leastPacketSize, 0x0102);
  reply.write(hex("fd 00"));
  reply.write(hex("00 00"));
  EXPECT_TRUE(wire.sent.empty());
  reply.finish();
  ASSERT_EQ(wire.sent.size(), 1U);
  EXPECT_EQ(wire.sent[0], hex("04 01 00 0c 01 02 01 00 fd 00 00 00"));
}

TEST(TdsPackets, ALongReplyIsSplitAtThePacketSize) {
  constexpr std::size_t room = leastPacketSize - headerSize;
  // Whether the last packet is full, and however the writing is cut up.
  for (const std::size_t length : {room, room + 1, 3 * room - 1, 3 * room, 3 * room + 1}) {
    for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, room, 5 * room}) {
      BufferWire wire({});
      ReplyWriter reply(wire, leastPacketSize, 1);
      Bytes data;
      for (std::size_t i = 0; i < length; ++i)
        data.push_back(static_cast<Byte>(i % 251));
      for (std::size_t at = 0; at < length; at += piece)
        reply.write(std::span(data).subspan(at, std::min(piece, length - at)));
      reply.finish();
      ASSERT_EQ(wire.sent.size(), (length + room - 1) / room) << length << " in pieces of " << piece;
      Bytes joined;
      for (std::size_t i = 0; i < wire.sent.size(); ++i) {
        const Bytes& packet = wire.sent[i];
        const bool isLast = i + 1 == wire.sent.size();
        EXPECT_EQ(packet[1], isLast ? 1 : 0);
        EXPECT_EQ(packet[2] * 256U + packet[3], packet.size());
        EXPECT_EQ(packet[6], i + 1) << "packets are numbered from 1";
        EXPECT_TRUE(isLast || packet.size() == leastPacketSize);
        joined.insert(joined.end(), packet.begin() + headerSize, packet.end());
      }
      EXPECT_EQ(joined, data);
    }
  }
}

}  // namespace
}  // namespace quillon::tds
