#include "tests/workbench/tds/login.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/workbench/tds/test_bytes.h"

namespace quillon::tds {
namespace {

using test::hex;
using test::wide;

// Version 9.0, encryption, no instance, thread 0x0db8, several requests at a time.
constexpr const char* preLogin =
    "00 00 1a 00 06  01 00 20 00 01  02 00 21 00 01  03 00 22 00 04  04 00 26 00 01  ff "
    "09 00 00 00 00 00  01  00  b8 0d 00 00  01";

// User "sa", password "ab", application "t", database "d" and nothing else; packets of 4096 bytes.
Bytes loginBytes() {
  const auto field = [](int offset, int length) {
    Bytes place;
    putU16(place, static_cast<std::uint64_t>(offset));
    putU16(place, static_cast<std::uint64_t>(length));
    return place;
  };
  Bytes bytes =
      hex("6a 00 00 00  04 00 00 74  00 10 00 00  00 00 00 07  2a 00 00 00  00 00 00 00  e0 03 00 00  00 00 00 00 "
          "04 08 00 00");
  for (const auto& [offset, length] : {std::pair{94, 0},
                                       {94, 2},    // user
                                       {98, 2},    // password
                                       {102, 1},   // application
                                       {104, 0},   // server
                                       {0, 0},     // extensions
                                       {104, 0},   // library
                                       {104, 0},   // language
                                       {104, 1}})  // database
    putBytes(bytes, field(offset, length));
  putBytes(bytes, hex("01 02 03 04 05 06  00 00 00 00  00 00 00 00  00 00 00 00  00 00 00 00"));
  // The password's "a" is 61: its halves exchanged 16, with A5 turned b3. The zero of its second byte becomes a5.
  putBytes(bytes, hex(wide("sa") + "b3 a5 83 a5 " + wide("t") + wide("d")));
  return bytes;
}

TEST(TdsLogin, PreLogin) {
  EXPECT_EQ(readPreLogin(hex(preLogin)).encryption, Encryption::on);
  EXPECT_EQ(readPreLogin(hex("ff")).encryption, Encryption::off);
  EXPECT_EQ(readPreLogin(hex("01 00 06 00 01 ff 02")).encryption, Encryption::notSupported);
}

TEST(TdsLogin, TheReplySaysThatNothingIsEncrypted) {
  EXPECT_EQ(preLoginReply(), hex("00 00 15 00 06  01 00 1b 00 01  02 00 1c 00 01  04 00 1d 00 01  ff "
                                 "0b 00 0c 38 00 00  02  00  00"));
  EXPECT_EQ(readPreLogin(preLoginReply()).encryption, Encryption::notSupported);
}

TEST(TdsLogin, Login) {
  const Bytes bytes = loginBytes();
  ASSERT_EQ(bytes.size(), 106U);
  const Login login = readLogin(bytes);
  EXPECT_EQ(login.version, version74);
  EXPECT_EQ(login.packetSize, 4096U);
  EXPECT_EQ(login.user, "sa");
  EXPECT_EQ(login.password, "ab");
  EXPECT_EQ(login.application, "t");
  EXPECT_EQ(login.database, "d");
}

TEST(TdsLogin, ABatchStandsBehindItsHeaders) {
  EXPECT_EQ(readBatch(hex("16 00 00 00  12 00 00 00 02 00  00 00 00 00 00 00 00 00  01 00 00 00" + wide("go"))), "go");
  EXPECT_EQ(readBatch(hex("04 00 00 00" + wide("x"))), "x");
  EXPECT_EQ(readBatch(hex("04 00 00 00")), "");
  for (const char* const wrong :
       {"", "04 00 00", "03 00 00 00 78 00", "07 00 00 00 78 00", "ff ff ff ff", "04 00 00 00 78"})
    EXPECT_THROW(readBatch(hex(wrong)), ProtocolError) << wrong;
}

// Reads what is left when the message is cut at every place, and when each of its bytes is another one.
template <typename Read>
void expectNoHarm(const Bytes& message, Read read) {
  int refused = 0;
  const auto attempt = [&](const Bytes& bytes) {
    try {
      read(bytes);
    } catch (const ProtocolError&) {
      ++refused;
    }
  };
  for (std::size_t length = 0; length < message.size(); ++length)
    attempt(Bytes(message.begin(), message.begin() + static_cast<std::ptrdiff_t>(length)));
  EXPECT_GE(refused, static_cast<int>(message.size()) / 2) << "what is cut is noticed";
  for (std::size_t i = 0; i < message.size(); ++i) {
    for (const Byte value : std::to_array<Byte>({0x00, 0x01, 0x7f, 0x80, 0xff})) {
      Bytes changed = message;
      changed[i] = value;
      attempt(changed);
    }
  }
}

TEST(TdsLogin, WhatIsCutOrChangedDoesNoHarm) {
  expectNoHarm(hex(preLogin), [](const Bytes& bytes) { readPreLogin(bytes); });
  expectNoHarm(loginBytes(), [](const Bytes& bytes) { readLogin(bytes); });
  expectNoHarm(hex("16 00 00 00  12 00 00 00 02 00  00 00 00 00 00 00 00 00  01 00 00 00" + wide("select 1")),
               [](const Bytes& bytes) { readBatch(bytes); });
}

TEST(TdsLogin, ALoginThatIsCutIsRefusedWhereverItIs) {
  const Bytes whole = loginBytes();
  for (std::size_t length = 0; length < whole.size(); ++length)
    EXPECT_THROW(readLogin(std::span(whole).first(length)), ProtocolError) << length;
}

}  // namespace
}  // namespace quillon::tds
