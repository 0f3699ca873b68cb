#include "workbench/presentation/sha256.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace quillon::workbench {

namespace {

constexpr std::size_t blockSize = 64;
constexpr std::size_t wordCount = 8;
constexpr std::size_t roundCount = 64;

// The first 32 bits behind the point of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, roundCount> roundConstants = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using State = std::array<std::uint32_t, wordCount>;

void takeBlock(State& state, std::span<const std::uint8_t, blockSize> block) {
  std::array<std::uint32_t, roundCount> words{};
  for (std::size_t i = 0; i < blockSize; ++i)
    words[i / 4] = words[i / 4] << 8U | block[i];
  for (std::size_t i = 16; i < roundCount; ++i) {
    const std::uint32_t a = words[i - 15], b = words[i - 2];
    words[i] = words[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3U) + words[i - 7] +
               (std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10U);
  }
  State s = state;
  for (std::size_t i = 0; i < roundCount; ++i) {
    const std::uint32_t choice = (s[4] & s[5]) ^ (~s[4] & s[6]);
    const std::uint32_t majority = (s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]);
    const std::uint32_t one =
        s[7] + (std::rotr(s[4], 6) ^ std::rotr(s[4], 11) ^ std::rotr(s[4], 25)) + choice + roundConstants[i] + words[i];
    const std::uint32_t two = (std::rotr(s[0], 2) ^ std::rotr(s[0], 13) ^ std::rotr(s[0], 22)) + majority;
    s = {one + two, s[0], s[1], s[2], s[3] + one, s[4], s[5], s[6]};
  }
  for (std::size_t i = 0; i < wordCount; ++i)
    state[i] += s[i];
}

std::array<std::uint8_t, wordCount * 4> sha256(std::string_view text) {
  std::string padded(text);
  padded += '\x80';
  padded.append((2 * blockSize - 8 - padded.size() % blockSize) % blockSize, '\0');
  const std::uint64_t bits = std::uint64_t{text.size()} * 8;
  for (int shift = 56; shift >= 0; shift -= 8)
    padded += static_cast<char>(bits >> shift & 0xffU);
  State state = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::array<std::uint8_t, blockSize> block{};
  for (std::size_t at = 0; at < padded.size(); at += blockSize) {
    std::transform(padded.begin() + static_cast<std::ptrdiff_t>(at),
                   padded.begin() + static_cast<std::ptrdiff_t>(at + blockSize), block.begin(),
                   [](char c) { return static_cast<std::uint8_t>(c); });
    takeBlock(state, block);
  }
  std::array<std::uint8_t, wordCount * 4> digest{};
  for (std::size_t i = 0; i < digest.size(); ++i)
    digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
  return digest;
}

}  // namespace

std::string sha256Base64(std::string_view text) {
  constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const auto digest = sha256(text);
  std::string result;
  for (std::size_t i = 0; i < digest.size(); i += 3) {
    std::uint32_t bits = 0;
    const std::size_t present = std::min<std::size_t>(3, digest.size() - i);
    for (std::size_t j = 0; j < 3; ++j)
      bits = bits << 8U | (j < present ? digest[i + j] : 0U);
    for (std::size_t j = 0; j < 4; ++j)
      result += j <= present ? letters[bits >> (18 - 6 * j) & 0x3fU] : '=';
  }
  return result;
}

std::string sha256Hexadecimal(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result;
  for (const std::uint8_t byte : sha256(text)) {
    result += digits[byte >> 4U];
    result += digits[byte & 0xfU];
  }
  return result;
}

}  // namespace quillon::workbench
