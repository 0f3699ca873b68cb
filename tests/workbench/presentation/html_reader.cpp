#include "tests/workbench/presentation/html_reader.h"

namespace quillon::workbench::test {

namespace {

PageTable readTable(const std::string& attributes, const std::string& body) {
  PageTable table{.attributes = attributes, .caption = {}, .head = {}, .rows = {}};
  bool inHead = false, inFoot = false;
  for (std::size_t at = 0; (at = body.find('<', at)) != std::string::npos;) {
    const std::size_t end = body.find('>', at);
    const std::string tag = body.substr(at + 1, end - at - 1);
    const std::string name = tag.substr(0, tag.find(' '));
    const std::string rest = tag.size() > name.size() ? tag.substr(name.size() + 1) : "";
    const std::string text = body.substr(end + 1, body.find('<', end) - end - 1);
    if (name == "caption") table.caption = text;
    if (name == "thead") inHead = true;
    if (name == "tbody") inHead = false;
    if (name == "tfoot") inFoot = true;
    auto& rows = inHead ? table.head : table.rows;
    if (name == "tr") rows.push_back({.attributes = rest, .inFoot = inFoot, .cells = {}});
    if (name == "td" || name == "th")
      rows.back().cells.push_back({.tag = name, .attributes = rest, .text = text.substr(0, text.find('\n'))});
    at = end;
  }
  return table;
}

}  // namespace

std::vector<std::string> PageRow::texts() const {
  std::vector<std::string> result;
  for (const PageCell& cell : cells)
    result.push_back(cell.text);
  return result;
}

std::vector<PageTable> tablesOf(const std::string& page) {
  std::vector<PageTable> tables;
  for (std::size_t at = 0; (at = page.find("<table", at)) != std::string::npos;) {
    const std::size_t begin = page.find('>', at), end = page.find("</table>", at);
    std::string attributes = page.substr(at + 6, begin - at - 6);
    if (!attributes.empty()) attributes.erase(0, 1);
    tables.push_back(readTable(attributes, page.substr(begin + 1, end - begin - 1)));
    at = end;
  }
  return tables;
}

std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t at = text.find(begin);
  if (at == std::string::npos) return "";
  const std::size_t last = text.find(end, at + begin.size());
  return last == std::string::npos ? "" : text.substr(at + begin.size(), last - at - begin.size());
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
    ++count;
  return count;
}

}  // namespace quillon::workbench::test
