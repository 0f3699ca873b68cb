#include "workbench/presentation/book_index.h"

#include "frame/text.h"
#include "workbench/messages/keeping.h"
#include "workbench/presentation/html_style.h"
#include "workbench/presentation/html_text.h"
#include "workbench/presentation/sha256.h"
#include "workbench/presentation/text_cells.h"
#include "workbench/presentation/value_output.h"

namespace quillon::workbench {

void writeBookIndex(std::ostream& out, const BookIndex& index) {
  const std::string sheet(commonStyle());
  out << "<!DOCTYPE html>\n<html lang=\"" << (index.language == Language::chinese ? "zh-CN" : "en")
      << "\">\n<head>\n<meta charset=\"utf-8\">\n<meta http-equiv=\"Content-Security-Policy\" content=\"default-src "
         "'none'; style-src 'sha256-"
      << sha256Base64(sheet) << "'; base-uri 'none'; form-action 'none'\">\n"
      << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" << escaped(index.title)
      << "</title>\n<style>" << sheet << "</style>\n</head>\n<body>\n<main>\n<h1>" << escaped(index.title) << "</h1>\n";
  if (!index.company.empty()) out << "<p class=note>" << escaped(index.company) << "</p>\n";
  out << "<p class=note>" << escaped(index.printed) << "</p>\n<table class=rows>\n<thead><tr class=h>";
  for (const auto& caption :
       {messages::fingerprintReport.in(index.language), messages::fingerprintRows.in(index.language),
        messages::fingerprintCaption.in(index.language)})
    out << "<th scope=col>" << escaped(caption);
  out << "\n<tbody>\n";
  for (const BookPage& page : index.pages) {
    out << "<tr><th scope=row><a href=\"" << attributeText(page.file) << "\">" << escaped(page.title)
        << "</a><td class=n>" << groupedCount(page.rows) << "<td>" << escaped(page.digest) << '\n';
  }
  out << "</table>\n</main>\n</body>\n</html>\n";
}

std::string bookPageFile(std::size_t number, const std::string& title) {
  constexpr std::size_t longest = 40, asciiEnd = 0x80;
  constexpr std::size_t twoDigits = 10;
  std::string name;
  std::string_view rest = title;
  for (std::size_t length = 0; !rest.empty() && length < longest; ++length) {
    const std::string_view before = rest;
    const char32_t character = takeCharacter(rest);
    const char ascii = character < asciiEnd ? static_cast<char>(character) : '-';
    const bool plain = (ascii >= 'a' && ascii <= 'z') || (ascii >= 'A' && ascii <= 'Z') || isDigit(ascii);
    const bool letter = character >= 0xa1 && !(character >= 0x2000 && character <= 0x206f) && character < 0xe000;
    name += plain || letter ? before.substr(0, before.size() - rest.size()) : "-";
  }
  return (number < twoDigits ? "0" : "") + std::to_string(number) + (name.empty() ? "" : "-" + name) + ".html";
}

}  // namespace quillon::workbench
