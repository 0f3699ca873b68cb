// `quillon book`: reports that a file lists, made in one go as a folder of pages or as a workbook.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "workbench/platform/account_source.h"
#include "workbench/platform/language.h"

namespace CLI {
class App;
}

namespace quillon::workbench {

struct BookOptions {
  std::string file = {};  // UTF-8
  AccountSource account = {};
  std::vector<std::string> settings = {};  // key=value, in every entry that has the item
  std::string output = {};                 // a folder to be made, or a workbook (.xlsx)
  Language language = Language::chinese;
  std::string date = {};  // the login's date, yyyy-mm-dd; empty: the last day of the current year
  bool terminal = false;  // `notes` is a terminal: show progress there
};

// Makes the book. Returns whether all entries could be made; those that could not are told on `notes` with their number
// and name, and then nothing is written. Throws std::exception with one line for the user when the book cannot be begun.
bool runBook(const BookOptions& options, std::ostream& out, std::ostream& notes);

// Tells on `out` what is wrong with a book before any account is asked; returns whether nothing is.
bool checkBook(const std::string& file, Language language, std::ostream& out);

void addBookCommand(CLI::App& app);

}  // namespace quillon::workbench
