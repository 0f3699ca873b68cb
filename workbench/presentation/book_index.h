// The page that leads to the pages of a book.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "workbench/messages/language.h"

namespace quillon::workbench {

struct BookPage {
  std::string title;
  std::string file;  // beside the index
  std::int64_t rows = 0;
  std::string digest;  // of its fingerprint
};

struct BookIndex {
  Language language = Language::chinese;
  std::string title;
  std::string company;
  std::string printed;  // the day, yyyy-mm-dd
  std::vector<BookPage> pages;
};

// Writes the page; as the pages of reports, it holds no script and asks for nothing from elsewhere.
void writeBookIndex(std::ostream& out, const BookIndex& index);

// A file's name for page number `number`: "02 Issues.html", of characters that every system lets into one.
std::string bookPageFile(std::size_t number, const std::string& title);

}  // namespace quillon::workbench
