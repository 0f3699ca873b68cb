// The tables of docs/user-guide.md, read so that tests can hold them against the program.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon::workbench::test {

// A table with the headings above it. Cells are without the blanks around them.
struct GuideTable {
  std::string chapter;  // the "##" heading
  std::string section;  // the "###" heading; empty when there is none between the chapter and the table
  std::vector<std::string> headings;
  std::vector<std::vector<std::string>> rows;  // each as long as the headings
};

// Throws std::runtime_error for a file that cannot be read and for a row that is not as long as its headings.
std::vector<GuideTable> readGuide(const std::string& file);

// The names of a cell: "`cWhCode`, `cFree1` to `cFree3`" gives cWhCode, cFree1, cFree2 and cFree3. Words outside of
// backticks are passed over.
std::vector<std::string> namesIn(std::string_view cell);

// The captions of as many `names`: one a name, separated by " · ", or a single one for all of them in which *n* stands
// for the number at a name's end. Throws std::runtime_error for any other number of captions.
std::vector<std::string> captionsOf(const std::vector<std::string>& names, std::string_view cell);

}  // namespace quillon::workbench::test
