#include "tests/reports/fx_detail/script_file.h"

#include <fstream>
#include <map>
#include <stdexcept>

namespace quillon::fx_detail {

namespace {

std::vector<std::string> linesOf(const std::string& name) {
  std::ifstream file(QUILLON_SCRIPTS "/" + name + ".txt", std::ios::binary);
  if (!file) throw std::runtime_error("no script " + name);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() != '#') lines.push_back(line);
  }
  return lines;
}

// Takes a word and the blank behind it off the front of a line.
bool takeWord(std::string& line, const std::string& word) {
  if (!line.starts_with(word + " ")) return false;
  line.erase(0, word.size() + 1);
  return true;
}

// Whether the piece stands on this basis; takes the mark off it.
bool stands(std::string& piece, Basis basis) {
  if (takeWord(piece, "dept")) return basis == Basis::department;
  if (takeWord(piece, "wh")) return basis == Basis::warehouse;
  return true;
}

std::string withoutQuotes(const std::string& piece) {
  if (piece.size() < 2 || piece.front() != '"' || piece.back() != '"') throw std::runtime_error("not a text: " + piece);
  return piece.substr(1, piece.size() - 2);
}

std::map<std::string, std::string> fragments(Basis basis) {
  std::map<std::string, std::string> texts;
  for (std::string line : linesOf("fragments")) {
    const std::string name = line.substr(0, line.find(' '));
    takeWord(line, name);
    std::string& text = texts[name];
    if (stands(line, basis)) text += withoutQuotes(line);
  }
  return texts;
}

}  // namespace

std::vector<std::string> expectedScript(const std::string& name, Basis basis) {
  const std::map<std::string, std::string> texts = fragments(basis);
  std::vector<std::string> script;
  for (std::string line : linesOf(name)) {
    if (line == "execute" || line == "query") {
      script.push_back("Session." + line + " ");
    } else if (line == "break") {
      script.back() += "\r\n";
    } else if (const auto fragment = texts.find(line); fragment != texts.end()) {
      script.back() += fragment->second;
    } else if (stands(line, basis)) {
      script.back() += withoutQuotes(line);
    }
  }
  return script;
}

}  // namespace quillon::fx_detail
