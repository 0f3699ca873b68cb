#include "tests/workbench/docs/guide_tables.h"

#include <fstream>
#include <regex>
#include <stdexcept>

#include "frame/text.h"

namespace quillon::workbench::test {

namespace {

std::vector<std::string> split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  while (true) {
    const std::size_t end = text.find(separator, begin);
    parts.emplace_back(trimBlanks(text.substr(begin, end == std::string_view::npos ? end : end - begin)));
    if (end == std::string_view::npos) return parts;
    begin = end + separator.size();
  }
}

// "| a | b |" as a and b.
std::vector<std::string> cellsOf(std::string_view line) {
  line.remove_prefix(1);
  if (line.ends_with('|')) line.remove_suffix(1);
  return split(line, "|");
}

bool isRule(const std::vector<std::string>& cells) {
  return cells.front().starts_with("---");
}

std::string numberAtEnd(const std::string& name) {
  const std::size_t last = name.find_last_not_of("0123456789");
  return name.substr(last == std::string::npos ? 0 : last + 1);
}

void addRange(std::vector<std::string>& names, const std::string& first, const std::string& last) {
  const std::string number = numberAtEnd(first);
  const std::string stem = first.substr(0, first.size() - number.size());
  for (int i = std::stoi(number); i <= std::stoi(numberAtEnd(last)); ++i)
    names.push_back(stem + std::to_string(i));
}

}  // namespace

std::vector<GuideTable> readGuide(const std::string& file) {
  std::ifstream in(file);
  if (!in) throw std::runtime_error("cannot read " + file);
  std::vector<GuideTable> tables;
  std::string chapter;
  std::string section;
  bool inTable = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("## ")) {
      chapter = line.substr(3);
      section.clear();
    } else if (line.starts_with("### ")) {
      section = line.substr(4);
    }
    if (!line.starts_with('|')) {
      inTable = false;
      continue;
    }
    std::vector<std::string> cells = cellsOf(line);
    if (!inTable) {
      tables.push_back({.chapter = chapter, .section = section, .headings = std::move(cells), .rows = {}});
      inTable = true;
    } else if (cells.size() != tables.back().headings.size()) {
      throw std::runtime_error("a row is not as long as its headings: " + line);
    } else if (!isRule(cells)) {
      tables.back().rows.push_back(std::move(cells));
    }
  }
  return tables;
}

std::vector<std::string> namesIn(std::string_view cell) {
  static const std::regex pattern("`([^`]+)`(?: to `([^`]+)`)?");
  const std::string text(cell);
  std::vector<std::string> names;
  for (std::sregex_iterator match(text.begin(), text.end(), pattern); match != std::sregex_iterator(); ++match) {
    if ((*match)[2].matched) {
      addRange(names, (*match)[1], (*match)[2]);
    } else {
      names.push_back((*match)[1]);
    }
  }
  return names;
}

std::vector<std::string> captionsOf(const std::vector<std::string>& names, std::string_view cell) {
  constexpr std::string_view number = "*n*";
  std::vector<std::string> captions = split(cell, " · ");
  if (captions.size() == 1 && captions.front().find(number) != std::string::npos) {
    captions.assign(names.size(), captions.front());
    for (std::size_t i = 0; i < names.size(); ++i)
      replaceAll(captions[i], number, numberAtEnd(names[i]));
  }
  if (captions.size() != names.size())
    throw std::runtime_error("there must be one caption a name: " + std::string(cell));
  return captions;
}

}  // namespace quillon::workbench::test
