// The bytes of a message, read and made. Numbers have their low byte first unless a name says otherwise; texts are UTF-16.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::tds {

using Byte = std::uint8_t;
using Bytes = std::vector<Byte>;

// What the other side sent cannot be read. The connection is of no more use.
class ProtocolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads from the front. Throws ProtocolError when there are fewer bytes than are asked for.
class ByteReader {
 public:
  explicit ByteReader(std::span<const Byte> bytes) : left_(bytes) {}

  Byte u8();
  std::uint16_t u16();
  std::uint16_t u16HighFirst();
  std::uint32_t u32();
  std::span<const Byte> bytes(std::size_t count);

  std::size_t left() const { return left_.size(); }
  std::span<const Byte> rest() const { return left_; }

 private:
  std::span<const Byte> left_;
};

// The part of `bytes` that begins at `offset`; throws ProtocolError when it is not all there.
std::span<const Byte> partOf(std::span<const Byte> bytes, std::size_t offset, std::size_t length);

// Each puts a value behind `bytes`.
void putU8(Bytes& bytes, std::uint64_t value);
void putU16(Bytes& bytes, std::uint64_t value);
void putU16HighFirst(Bytes& bytes, std::uint64_t value);
void putU32(Bytes& bytes, std::uint64_t value);
void putU64(Bytes& bytes, std::uint64_t value);
void putBytes(Bytes& bytes, std::span<const Byte> more);
// A text behind its length in UTF-16 units, which takes one byte or two. What is longer than `longest`, or than 255 units,
// is cut between two characters.
void putShortText(Bytes& bytes, std::string_view text);
void putText(Bytes& bytes, std::string_view text, std::uint16_t longest);

// UTF-8 to UTF-16 and back. Half of a surrogate pair survives both ways; a byte that is no UTF-8 becomes U+FFFD.
Bytes utf16Of(std::string_view text);
// Throws ProtocolError for an odd number of bytes.
std::string utf8Of(std::span<const Byte> utf16);

}  // namespace quillon::tds
