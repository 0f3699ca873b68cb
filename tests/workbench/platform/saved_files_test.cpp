// Names of saved files, and what can only be a file. saved_filters_test.cpp has how they are kept.
#include "workbench/platform/saved_files.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
namespace {

TEST(SavedName, HasLettersDigitsAndAFewSigns) {
  for (const char* const name :
       {"a", "三月 线边库", "2024-03_v1.2 (x), y+z", "Ünïcode", "console", "com", "lpt10", "json"})
    EXPECT_EQ(faultOfSavedName(name).english(), "") << name;
  EXPECT_EQ(faultOfSavedName(std::string(60, 'x')).english(), "");
  EXPECT_EQ(faultOfSavedName(std::string(61, 'x')).english(), "it has more than 60 characters");
  EXPECT_EQ(faultOfSavedName("").english(), "it is empty");
  for (const char* const name : {"a/b", "a\\b", "a:b", "a*", "a?", "a\"", "<a", "a|b", "a\nb", "a\tb", "\x01", "a%b",
                                 "a'b", "a\u200bb", "a\u202eb", "a\u0085", "\xff", "\xed\xa0\x80"})
    EXPECT_EQ(faultOfSavedName(name).english(), "it may have letters, digits, blanks and - _ . ( ) + , in it") << name;
  for (const char* const name : {" a", "a ", ".a", "a.", "..", "."})
    EXPECT_EQ(faultOfSavedName(name).english(), "it begins or ends with a blank or a point") << name;
  EXPECT_EQ(faultOfSavedName("--a").english(), "it begins like an option");
  EXPECT_EQ(faultOfSavedName("a.Json").english(), "it ends like a file's");
  for (const char* const name : {"con", "NUL", "Com1", "lpt9", "aux.txt", "prn"})
    EXPECT_EQ(faultOfSavedName(name).english(), "Windows has a device of this name") << name;
}

TEST(SavedName, IsNoFilesName) {
  for (const char* const file : {"./a", "x/y", "x\\a", "a.json", "a.JSON"})
    EXPECT_TRUE(isSavedAsFile(file)) << file;
  for (const char* const name : {"a", "json", "a.jso", "三月"})
    EXPECT_FALSE(isSavedAsFile(name)) << name;
}

}  // namespace
}  // namespace quillon::workbench
