#include "tests/workbench/presentation/xlsx_sheet.h"

#include <unzip.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <stdexcept>

#include "tests/workbench/platform/temporary_file.h"

namespace quillon::workbench::test {

namespace {

// The first group of `pattern` in `text`; empty when it does not occur.
std::string found(const std::string& text, const std::string& pattern) {
  static std::map<std::string, std::regex> known;  // making one takes longer than searching
  auto entry = known.find(pattern);
  if (entry == known.end()) entry = known.emplace(pattern, std::regex(pattern)).first;
  std::smatch match;
  return std::regex_search(text, match, entry->second) ? match[1].str() : "";
}

std::string unescaped(std::string text) {
  for (const auto& [what, by] : {std::pair("&lt;", "<"), {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}}) {
    const std::string name = what;
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1))
      text.replace(at, name.size(), by);
  }
  return text;
}

// Each element `name` in `text` with its attributes and what it holds; elements of one name do not stand in one
// another.
std::vector<std::pair<std::string, std::string>> elements(const std::string& text, const std::string& name) {
  std::vector<std::pair<std::string, std::string>> result;
  const std::string open = "<" + name, close = "</" + name + ">";
  for (std::size_t at = text.find(open); at != std::string::npos; at = text.find(open, at + 1)) {
    const char next = text.at(at + open.size());
    if (next != ' ' && next != '>' && next != '/') continue;
    const std::size_t end = text.find('>', at);
    const std::string attributes = text.substr(at + open.size(), end - at - open.size());
    std::string content;
    if (!attributes.ends_with('/')) content = text.substr(end + 1, text.find(close, end) - end - 1);
    result.emplace_back(attributes, content);
  }
  return result;
}

// Opened under a name that the C library takes anywhere.
class Archive {
 public:
  explicit Archive(const std::filesystem::path& file) : copy_(".zip") {
    std::filesystem::copy_file(file, copy_.path());
    zip_ = unzOpen(copy_.path().string().c_str());
    if (zip_ == nullptr) throw std::runtime_error("no workbook");
  }
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;
  ~Archive() { unzClose(zip_); }

  std::string member(const std::string& name) const {
    unz_file_info info{};
    if (unzLocateFile(zip_, name.c_str(), 1) != UNZ_OK || unzOpenCurrentFile(zip_) != UNZ_OK ||
        unzGetCurrentFileInfo(zip_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK) {
      throw std::runtime_error("the workbook has no " + name);
    }
    std::string content(info.uncompressed_size, '\0');
    const int count = unzReadCurrentFile(zip_, content.data(), static_cast<unsigned>(content.size()));
    unzCloseCurrentFile(zip_);
    if (static_cast<std::size_t>(count) != content.size()) throw std::runtime_error(name + " cannot be read");
    return content;
  }

 private:
  TemporaryFile copy_;
  unzFile zip_ = nullptr;
};

}  // namespace

XlsxSheet::XlsxSheet(const std::filesystem::path& file, std::size_t number) {
  const Archive archive(file);
  const std::string workbook = archive.member("xl/workbook.xml");
  for (const auto& [attributes, content] : elements(workbook, "sheet"))
    names_.push_back(unescaped(found(attributes, " name=\"([^\"]*)\"")));
  name_ = names_.at(number - 1);
  const std::string styles = archive.member("xl/styles.xml");
  std::map<std::string, std::string> formats;
  for (const auto& [attributes, content] : elements(styles, "numFmt"))
    formats[found(attributes, "numFmtId=\"([0-9]+)\"")] = unescaped(found(attributes, "formatCode=\"([^\"]*)\""));
  const auto cellStyles = elements(elements(styles, "cellXfs").at(0).second, "xf");
  const auto fonts = elements(elements(styles, "fonts").at(0).second, "font");

  const std::string sheet = archive.member("xl/worksheets/sheet" + std::to_string(number) + ".xml");
  filter_ = found(sheet, "<autoFilter ref=\"([^\"]*)\"");
  frozen_ = found(sheet, "<pane [^>]*topLeftCell=\"([^\"]*)\"");
  for (const auto& [attributes, content] : elements(sheet, "mergeCell"))
    merged_.push_back(found(attributes, "ref=\"([^\"]*)\""));
  for (const auto& [attributes, content] : elements(sheet, "col"))
    widths_[std::stoi(found(attributes, "min=\"([0-9]+)\""))] = std::stod(found(attributes, "width=\"([^\"]*)\""));
  for (const char* part : {"pageMargins", "pageSetup", "oddHeader", "oddFooter"}) {
    for (const auto& [attributes, content] : elements(sheet, part))
      pages_.append(part).append(attributes).append(unescaped(content)).append("\n");
  }
  for (const auto& [attributes, content] : elements(workbook, "definedName")) {
    if (found(attributes, "localSheetId=\"([0-9]+)\"") == std::to_string(number - 1) &&
        attributes.find("Print_Titles") != std::string::npos)
      pages_.append("repeated ").append(unescaped(content)).append("\n");
  }
  for (const auto& [rowAttributes, row] : elements(sheet, "row")) {
    lastRow_ = std::stoi(found(rowAttributes, "r=\"([0-9]+)\""));
    const std::string level = found(rowAttributes, "outlineLevel=\"([0-9]+)\"");
    if (!level.empty()) levels_[lastRow_] = std::stoi(level);
    std::string& line = rows_[lastRow_];
    for (const auto& [attributes, content] : elements(row, "c")) {
      XlsxCell& cell = cells_[found(attributes, " r=\"([A-Z]+[0-9]+)\"")];
      const std::string style = found(attributes, " s=\"([0-9]+)\"");
      const std::string look = cellStyles.at(style.empty() ? 0 : std::stoul(style)).first;
      cell.format = formats[found(look, "numFmtId=\"([0-9]+)\"")];
      cell.filled = found(look, "(applyFill)") == "applyFill";
      const std::string& font = fonts.at(std::stoul(found(look, "fontId=\"([0-9]+)\""))).second;
      cell.bold = font.find("<b/>") != std::string::npos;
      cell.red = font.find("FFC00000") != std::string::npos;
      std::string shown;
      if (attributes.find("t=\"inlineStr\"") != std::string::npos) {
        shown = cell.text = unescaped(elements(content, "t").at(0).second);
      } else if (!content.empty()) {
        for (const auto& [attributesOfFormula, formula] : elements(content, "f"))
          cell.formula = unescaped(formula);
        shown = elements(content, "v").at(0).second;
        cell.number = std::stod(shown);
      }
      if (!shown.empty()) line += (line.empty() ? "" : "|") + shown;
    }
  }
}

int XlsxSheet::level(int row) const {
  const auto found = levels_.find(row);
  return found == levels_.end() ? 0 : found->second;
}

double XlsxSheet::width(int column) const {
  const auto found = widths_.find(column);
  return found == widths_.end() ? 0 : found->second;
}

XlsxCell XlsxSheet::cell(const std::string& place) const {
  const auto found = cells_.find(place);
  return found == cells_.end() ? XlsxCell() : found->second;
}

std::string XlsxSheet::row(int row) const {
  const auto found = rows_.find(row);
  return found == rows_.end() ? "" : found->second;
}

}  // namespace quillon::workbench::test
