#include "workbench/presentation/fingerprint_file.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "workbench/messages/common.h"
#include "workbench/messages/keeping.h"
#include "workbench/platform/user_error.h"
#include "workbench/presentation/fingerprint_cells.h"
#include "workbench/presentation/zip_reader.h"
#include "workbench/tsql/values/utf8_path.h"

namespace quillon::workbench {

namespace {

// `text` of a page or a sheet with its references to characters resolved. All that is looked for is ASCII.
std::string unescaped(std::string_view text) {
  static const std::map<std::string_view, char> named = {
      {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
  std::string result;
  while (!text.empty()) {
    const std::size_t end = text.front() == '&' ? text.find(';') : std::string_view::npos;
    if (end == std::string_view::npos) {
      result += text.front();
      text.remove_prefix(1);
      continue;
    }
    const std::string_view name = text.substr(1, end - 1);
    if (const auto known = named.find(name); known != named.end()) {
      result += known->second;
    } else if (name.starts_with('#')) {
      const bool hexadecimal = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
      const std::string_view digits = name.substr(hexadecimal ? 2 : 1);
      unsigned number = 0;
      constexpr int decimal = 10, sixteen = 16;
      std::from_chars(digits.begin(), digits.end(), number, hexadecimal ? sixteen : decimal);
      result += static_cast<char>(number & 0x7fU);
    } else {
      result += text.substr(0, end + 1);
    }
    text.remove_prefix(end + 1);
  }
  return result;
}

// Excel's own notation of characters, _xHHHH_, resolved.
std::string withoutNotation(const std::string& text) {
  constexpr std::size_t length = 7, digits = 4;
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    unsigned number = 0;
    if (text.compare(at, 2, "_x") == 0 && at + length <= text.size() && text[at + length - 1] == '_') {
      const char* const first = text.data() + at + 2;
      const auto [last, error] = std::from_chars(first, first + digits, number, 16);
      if (error == std::errc() && last == first + digits && number < 0x80) {
        result += static_cast<char>(number);
        at += length;
        continue;
      }
    }
    result += text[at++];
  }
  return result;
}

RunFingerprint checked(const std::string& text, std::string_view digest, const std::string& name) {
  std::string own = fingerprintDigest(text);
  std::erase(own, ' ');
  if (own != digest) throw UserError(messages::fingerprintDamaged(name));
  try {
    return parseFingerprint(text);
  } catch (const std::invalid_argument&) {
    throw UserError(messages::fingerprintDamaged(name));
  }
}

std::vector<RunFingerprint> fromPage(std::string_view page, const std::string& name) {
  std::vector<RunFingerprint> found;
  const std::string opening = std::string(fingerprintAttribute) + "=\"";
  for (std::size_t at = page.find(opening); at != std::string_view::npos; at = page.find(opening, at)) {
    at += opening.size();
    const std::size_t end = page.find('"', at);
    if (end == std::string_view::npos) throw UserError(messages::fingerprintDamaged(name));
    const std::string value = unescaped(page.substr(at, end - at));
    const std::size_t blank = value.find(' ');
    if (blank == std::string::npos) throw UserError(messages::fingerprintDamaged(name));
    found.push_back(checked(value.substr(blank + 1), std::string_view(value).substr(0, blank), name));
  }
  return found;
}

// The parts of a fingerprint that cells hold.
struct Parts {
  std::string digest;
  std::map<std::size_t, std::string> texts;
  std::size_t count = 0;
};

// "3F2A91BC02DE77F1 1/2 {...", behind the mark.
void addPart(std::vector<Parts>& all, std::string_view cell) {
  const std::size_t afterDigest = cell.find(' ');
  const std::size_t slash = cell.find('/', std::min(afterDigest, cell.size()));
  const std::size_t afterCount = cell.find(' ', std::min(slash, cell.size()));
  if (afterCount == std::string_view::npos) return;
  std::size_t part = 0, count = 0;
  std::from_chars(cell.begin() + afterDigest + 1, cell.begin() + slash, part);
  std::from_chars(cell.begin() + slash + 1, cell.begin() + afterCount, count);
  const std::string_view digest = cell.substr(0, afterDigest);
  auto known = std::ranges::find(all, digest, &Parts::digest);
  if (known == all.end())
    known = all.insert(all.end(), Parts{.digest = std::string(digest), .texts = {}, .count = count});
  known->texts[part] = cell.substr(afterCount + 1);
}

// What the cells in `xml`, a sheet or the texts that sheets share, hold.
void addCells(std::vector<Parts>& all, std::string_view xml) {
  for (std::size_t at = xml.find(cellMark); at != std::string_view::npos; at = xml.find(cellMark, at)) {
    at += cellMark.size();
    const std::size_t end = std::min(xml.find('<', at), xml.size());
    addPart(all, withoutNotation(unescaped(xml.substr(at, end - at))));
    at = end;
  }
}

std::vector<RunFingerprint> fromWorkbook(std::string_view bytes, const std::string& name) {
  std::vector<Parts> all;
  try {
    constexpr std::size_t most = std::size_t{1} << 31U;
    const ZipReader archive(bytes);
    // A spreadsheet gathers texts in one member, this program leaves them on the sheet, which is the last one.
    std::vector<std::string> members = {"xl/sharedStrings.xml"};
    std::vector<std::string> sheets;
    for (std::string& member : archive.names()) {
      if (member.starts_with("xl/worksheets/") && member.ends_with(".xml")) sheets.push_back(std::move(member));
    }
    const auto longerLast = [](const std::string& one, const std::string& other) {
      return one.size() != other.size() ? one.size() < other.size() : one < other;
    };
    std::ranges::sort(sheets, longerLast);
    members.insert(members.end(), sheets.rbegin(), sheets.rend());
    for (const std::string& member : members) {
      if (const auto xml = archive.member(member, most)) addCells(all, *xml);
      if (!all.empty()) break;
    }
  } catch (const std::invalid_argument&) {
    throw UserError(messages::workbookUnreadable(name));
  }
  std::vector<RunFingerprint> found;
  for (const Parts& parts : all) {
    std::string text;
    for (const auto& [number, part] : parts.texts)
      text += part;
    if (parts.texts.size() != parts.count) throw UserError(messages::fingerprintDamaged(name));
    found.push_back(checked(text, parts.digest, name));
  }
  return found;
}

}  // namespace

std::vector<RunFingerprint> readFingerprints(const std::filesystem::path& file) {
  const std::string name = utf8FromPath(file);
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  if (!stream) throw UserError(messages::cannotRead(name));
  std::vector<RunFingerprint> found = bytes.starts_with("PK") ? fromWorkbook(bytes, name) : fromPage(bytes, name);
  if (found.empty()) throw UserError(messages::noFingerprint(name));
  return found;
}

}  // namespace quillon::workbench
