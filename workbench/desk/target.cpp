#include "workbench/desk/target.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quillon::workbench::desk {

namespace {

constexpr unsigned char firstPrintable = 0x20, deleted = 0x7F;

bool isControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < firstPrintable || byte == deleted;
}

// -1 for what is none.
int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// How many bytes the character at the front of `text` has; 0 when it is none: cut off, longer than it need be, half of a
// pair, or beyond the last one.
std::size_t characterAt(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const struct {
    unsigned char mask, mark;
    std::uint32_t least;
  } forms[] = {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
  std::size_t length = 0;
  for (const auto& form : forms) {
    ++length;
    if ((byte(0) & form.mask) != form.mark) continue;
    if (text.size() < length) return 0;
    std::uint32_t code = byte(0) & static_cast<unsigned char>(~form.mask);
    for (std::size_t i = 1; i < length; ++i) {
      if ((byte(i) & 0xC0) != 0x80) return 0;
      code = code << 6 | (byte(i) & 0x3F);
    }
    const bool half = code >= 0xD800 && code <= 0xDFFF;
    return code < form.least || half || code > 0x10FFFF ? 0 : length;
  }
  return 0;
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = characterAt(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::optional<std::string> decoded(std::string_view text, bool plusIsBlank) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
      const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
      if (high < 0 || low < 0) return std::nullopt;
      result += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      result += plusIsBlank && text[i] == '+' ? ' ' : text[i];
    }
  }
  if (result.find('\0') != std::string::npos || !isUtf8(result)) return std::nullopt;
  return result;
}

std::optional<std::string> readPath(std::string_view text) {
  if (!text.starts_with('/')) return std::nullopt;
  std::string path;
  while (!text.empty()) {
    text.remove_prefix(1);
    const std::size_t end = std::min(text.find('/'), text.size());
    const auto part = decoded(text.substr(0, end), false);
    text.remove_prefix(end);
    if (!part || *part == "." || *part == ".." || part->find_first_of("/\\") != std::string::npos) return std::nullopt;
    if (std::ranges::any_of(*part, isControl)) return std::nullopt;
    // The start page alone has an empty part.
    if (part->empty() && !(path.empty() && text.empty())) return std::nullopt;
    path.append("/").append(*part);
  }
  return path;
}

std::optional<std::map<std::string, std::string>> readQuery(std::string_view text) {
  std::map<std::string, std::string> query;
  while (!text.empty()) {
    const std::string_view pair = text.substr(0, text.find('&'));
    text.remove_prefix(std::min(pair.size() + 1, text.size()));
    const std::size_t equals = std::min(pair.find('='), pair.size());
    const auto name = decoded(pair.substr(0, equals), true);
    const auto value = decoded(pair.substr(std::min(equals + 1, pair.size())), true);
    if (!name || !value) return std::nullopt;
    if (!pair.empty()) query.insert_or_assign(*name, *value);
  }
  return query;
}

}  // namespace

std::optional<Target> readTarget(std::string_view target) {
  // The part behind "#" stays in the browser.
  const auto misplaced = [](char c) { return isControl(c) || c == ' ' || c == '#' || static_cast<signed char>(c) < 0; };
  if (std::ranges::any_of(target, misplaced)) return std::nullopt;
  const std::size_t end = std::min(target.find('?'), target.size());
  auto path = readPath(target.substr(0, end));
  auto query = readQuery(target.substr(std::min(end + 1, target.size())));
  if (!path || !query) return std::nullopt;
  return Target{.path = std::move(*path), .query = std::move(*query)};
}

}  // namespace quillon::workbench::desk
