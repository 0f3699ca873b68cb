#include "tests/workbench/tds/bytes.h"

#include <gtest/gtest.h>

#include "tests/workbench/tds/test_bytes.h"

namespace quillon::tds {
namespace {

using test::hex;

TEST(TdsBytes, NumbersAreReadAndWrittenLowByteFirst) {
  Bytes bytes;
  putU8(bytes, 0x12);
  putU16(bytes, 0x3456);
  putU16HighFirst(bytes, 0x789a);
  putU32(bytes, 0xbcdef012);
  putU64(bytes, 0x0102030405060708);
  EXPECT_EQ(bytes, hex("12 56 34 78 9a 12 f0 de bc 08 07 06 05 04 03 02 01"));
  ByteReader reader(bytes);
  EXPECT_EQ(reader.u8(), 0x12);
  EXPECT_EQ(reader.u16(), 0x3456);
  EXPECT_EQ(reader.u16HighFirst(), 0x789a);
  EXPECT_EQ(reader.u32(), 0xbcdef012);
  EXPECT_EQ(reader.left(), 8U);
}

TEST(TdsBytes, NothingIsReadPastTheEnd) {
  const Bytes three = {1, 2, 3};
  ByteReader reader(three);
  EXPECT_THROW(reader.u32(), ProtocolError);
  EXPECT_THROW(partOf(three, 4, 0), ProtocolError);
  EXPECT_THROW(partOf(three, 2, 2), ProtocolError);
  EXPECT_THROW(partOf(three, 1, static_cast<std::size_t>(-1)), ProtocolError);
  EXPECT_EQ(partOf(three, 3, 0).size(), 0U);
  EXPECT_EQ(partOf(three, 1, 2).size(), 2U);
}

TEST(TdsBytes, TextsAreUtf16) {
  EXPECT_EQ(utf16Of("a中😀"), hex("61 00 2d 4e 3d d8 00 de"));
  EXPECT_EQ(utf8Of(hex("61 00 2d 4e 3d d8 00 de")), "a中😀");
  EXPECT_EQ(utf16Of(utf8Of(hex("3d d8 61 00"))), hex("3d d8 61 00")) << "half of a pair stays";
  EXPECT_EQ(utf16Of("\xff"), hex("fd ff"));
  EXPECT_THROW(utf8Of(hex("61 00 62")), ProtocolError);
}

TEST(TdsBytes, LongTextsAreCutBetweenCharacters) {
  Bytes bytes;
  putShortText(bytes, std::string(300, 'x'));
  EXPECT_EQ(bytes.size(), 1U + 2 * 255);
  EXPECT_EQ(bytes.front(), 255);
  bytes.clear();
  putText(bytes, "ab😀", 3);
  EXPECT_EQ(bytes, hex("02 00 61 00 62 00"));
  bytes.clear();
  putText(bytes, "ab😀", 4);
  EXPECT_EQ(bytes, hex("04 00 61 00 62 00 3d d8 00 de"));
}

}  // namespace
}  // namespace quillon::tds
