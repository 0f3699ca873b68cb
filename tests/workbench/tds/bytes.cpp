#include "tests/workbench/tds/bytes.h"

#include "workbench/tsql/values/text.h"

namespace quillon::tds {

namespace {

constexpr unsigned bitsOfByte = 8;
constexpr std::uint16_t firstHighHalf = 0xd800, firstLowHalf = 0xdc00, lastLowHalf = 0xdfff;
constexpr char32_t firstOfPairs = 0x10000;
constexpr unsigned bitsOfHalf = 10;

void putNumber(Bytes& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i, value >>= bitsOfByte)
    bytes.push_back(static_cast<Byte>(value));
}

// The text's UTF-16, at most `longest` units of it.
Bytes cutUtf16Of(std::string_view text, std::size_t longest) {
  Bytes utf16 = utf16Of(text);
  if (utf16.size() / 2 <= longest) return utf16;
  utf16.resize(longest * 2);
  const Byte high = utf16.back();
  if (high >= firstHighHalf >> bitsOfByte && high < firstLowHalf >> bitsOfByte) utf16.resize(utf16.size() - 2);
  return utf16;
}

}  // namespace

Byte ByteReader::u8() {
  return bytes(1)[0];
}

std::uint16_t ByteReader::u16() {
  const auto two = bytes(2);
  return static_cast<std::uint16_t>(two[0] | two[1] << bitsOfByte);
}

std::uint16_t ByteReader::u16HighFirst() {
  const auto two = bytes(2);
  return static_cast<std::uint16_t>(two[1] | two[0] << bitsOfByte);
}

std::uint32_t ByteReader::u32() {
  const std::uint32_t low = u16();
  return low | static_cast<std::uint32_t>(u16()) << 2 * bitsOfByte;
}

std::span<const Byte> ByteReader::bytes(std::size_t count) {
  const auto taken = partOf(left_, 0, count);
  left_ = left_.subspan(count);
  return taken;
}

std::span<const Byte> partOf(std::span<const Byte> bytes, std::size_t offset, std::size_t length) {
  if (offset > bytes.size() || length > bytes.size() - offset) throw ProtocolError("the message ends too early");
  return bytes.subspan(offset, length);
}

void putU8(Bytes& bytes, std::uint64_t value) {
  putNumber(bytes, value, 1);
}
void putU16(Bytes& bytes, std::uint64_t value) {
  putNumber(bytes, value, 2);
}
void putU16HighFirst(Bytes& bytes, std::uint64_t value) {
  putU8(bytes, value >> bitsOfByte);
  putU8(bytes, value);
}
void putU32(Bytes& bytes, std::uint64_t value) {
  putNumber(bytes, value, 4);
}
void putU64(Bytes& bytes, std::uint64_t value) {
  putNumber(bytes, value, 8);
}
void putBytes(Bytes& bytes, std::span<const Byte> more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

void putShortText(Bytes& bytes, std::string_view text) {
  const Bytes utf16 = cutUtf16Of(text, 0xff);
  putU8(bytes, utf16.size() / 2);
  putBytes(bytes, utf16);
}

void putText(Bytes& bytes, std::string_view text, std::uint16_t longest) {
  const Bytes utf16 = cutUtf16Of(text, longest);
  putU16(bytes, utf16.size() / 2);
  putBytes(bytes, utf16);
}

Bytes utf16Of(std::string_view text) {
  Bytes utf16;
  utf16.reserve(text.size() * 2);
  for (std::size_t position = 0; position < text.size();) {
    char32_t character = tsql::text::next(text, position);
    if (character > tsql::text::lastCharacter) character = 0xfffd;
    if (character < firstOfPairs) {
      putU16(utf16, character);
    } else {
      character -= firstOfPairs;
      putU16(utf16, firstHighHalf + (character >> bitsOfHalf));
      putU16(utf16, firstLowHalf + (character & 0x3ffU));
    }
  }
  return utf16;
}

std::string utf8Of(std::span<const Byte> utf16) {
  std::string text;
  text.reserve(utf16.size() / 2);
  for (ByteReader reader(utf16); reader.left() > 0;) {
    char32_t character = reader.u16();
    if (character >= firstHighHalf && character < firstLowHalf && reader.left() > 0) {
      ByteReader ahead = reader;
      const std::uint16_t low = ahead.u16();
      if (low >= firstLowHalf && low <= lastLowHalf) {
        character = firstOfPairs + ((character - firstHighHalf) << bitsOfHalf) + (low - firstLowHalf);
        reader = ahead;
      }
    }
    tsql::text::append(text, character);
  }
  return text;
}

}  // namespace quillon::tds
