// CSV files, read value by value.
#include "workbench/account/csv.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace quillon::account {
namespace {

using ::testing::ElementsAre;
using Record = std::vector<std::string>;

// All records; a value that stood in quotes keeps them.
std::vector<Record> read(const std::string& text) {
  std::istringstream in(text);
  CsvReader reader(in);
  std::vector<Record> records;
  while (reader.next()) {
    Record& record = records.emplace_back();
    for (const CsvField& field : reader.fields())
      record.push_back(field.quoted ? '"' + field.text + '"' : field.text);
  }
  return records;
}

std::string refusal(const std::string& text) {
  try {
    read(text);
  } catch (const CsvError& error) {
    return std::to_string(error.line()) + "/" + std::to_string(error.field()) + ": " + error.what();
  }
  return "accepted";
}

std::string written(const std::optional<std::string>& value) {
  std::string line;
  appendCsv(line, value);
  return line;
}

TEST(Csv, ReadsRecordsWithEitherLineEnd) {
  EXPECT_THAT(read("a,b\r\n1,2\n3,4\r\n"), ElementsAre(Record{"a", "b"}, Record{"1", "2"}, Record{"3", "4"}));
}

TEST(Csv, TakesTheLastLineWithoutItsEnd) {
  EXPECT_THAT(read("a,b\n1,2"), ElementsAre(Record{"a", "b"}, Record{"1", "2"}));
  EXPECT_THAT(read("a,b\n1,"), ElementsAre(Record{"a", "b"}, Record{"1", ""}));
  EXPECT_THAT(read("a\n\"\""), ElementsAre(Record{"a"}, Record{"\"\""}));
}

TEST(Csv, TellsAnEmptyTextFromNoValue) {
  EXPECT_THAT(read(",\"\",\n"), ElementsAre(Record{"", "\"\"", ""}));
  EXPECT_THAT(read("a\n\n\"\"\n"), ElementsAre(Record{"a"}, Record{""}, Record{"\"\""}));
}

TEST(Csv, KeepsCommasQuotesAndLineBreaksWithinQuotes) {
  EXPECT_THAT(read("\"a,b\",\"say \"\"go\"\"\",\"1\r\n2\n3\r4\"\r\n"),
              ElementsAre(Record{"\"a,b\"", "\"say \"go\"\"", "\"1\r\n2\n3\r4\""}));
}

TEST(Csv, KeepsBlanksAndPassesOverAByteOrderMark) {
  EXPECT_THAT(read("\xEF\xBB\xBF编码, 名 \n"), ElementsAre(Record{"编码", " 名 "}));
}

TEST(Csv, HasNoRecordInAnEmptyFile) {
  EXPECT_TRUE(read("").empty());
  EXPECT_TRUE(read("\xEF\xBB\xBF").empty());
}

TEST(Csv, ReadsValuesThatCrossItsBlocks) {
  const std::string large(200'000, 'x');
  EXPECT_THAT(read("\"" + large + "\",1\n2,3\n"), ElementsAre(Record{"\"" + large + "\"", "1"}, Record{"2", "3"}));
}

// Wherever a block ends: within a text, its line breaks and its doubled quotes, behind a comma.
TEST(Csv, ReadsWhateverABlockCuts) {
  constexpr std::size_t block = 65'536;
  const std::string record = "ab,\"c\"\"\n\"\"d\",,\"\"\r\n";
  for (std::size_t cut = 1; cut < record.size(); ++cut) {
    std::istringstream in(std::string(block - cut - 2, 'x') + "\r\n" + record + "e,f\n");
    CsvReader reader(in);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.fields().size(), 1U);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), 2);
    ASSERT_EQ(reader.fields().size(), 4U);
    EXPECT_EQ(reader.fields()[0].text, "ab");
    EXPECT_EQ(reader.fields()[1].text, "c\"\n\"d");
    EXPECT_FALSE(reader.fields()[2].quoted);
    EXPECT_TRUE(reader.fields()[3].quoted);
    EXPECT_EQ(reader.fields()[3].line, 3);
    ASSERT_TRUE(reader.next());
    EXPECT_EQ(reader.line(), 4);
    EXPECT_EQ(reader.fields()[1].text, "f");
    EXPECT_FALSE(reader.next());
  }
}

TEST(Csv, NamesTheLineInWhichAValueBegins) {
  std::istringstream in("a,\"1\n2\",b\nc\n");
  CsvReader reader(in);
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.fields()[1].line, 1);
  EXPECT_EQ(reader.fields()[2].line, 2);
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.fields()[0].line, 3);
}

TEST(Csv, RefusesWhatIsNoCsv) {
  EXPECT_EQ(refusal("a\nb,c\"d\n"),
            "2/1: a quote within a value; put the value in quotes and double the quotes within it");
  EXPECT_EQ(refusal("\"a\"b\n"), "1/0: text behind the closing quote; double the quotes within a value");
  EXPECT_EQ(refusal("a\nb,\"c\nd\n"), "2/1: the quote that opens this value is not closed; close it");
  EXPECT_EQ(
      refusal("a\rb\n"),
      "1/0: a carriage return without a line feed; end lines with both, and put a value that holds one in quotes");
  EXPECT_EQ(
      refusal("\"a\"\rb\n"),
      "1/0: a carriage return without a line feed; end lines with both, and put a value that holds one in quotes");
}

TEST(Csv, WritesQuotesWhereTheyMustBe) {
  EXPECT_EQ(written(std::nullopt), "");
  EXPECT_EQ(written(""), "\"\"");
  EXPECT_EQ(written("材料 a"), "材料 a");
  EXPECT_EQ(written("a,b"), "\"a,b\"");
  EXPECT_EQ(written("say \"go\""), "\"say \"\"go\"\"\"");
  EXPECT_EQ(written("1\n2"), "\"1\n2\"");
  EXPECT_EQ(written("1\r2"), "\"1\r2\"");
}

std::string textOf(std::string_view text) {
  std::string line;
  appendCsvText(line, text, EmptyText::bare);
  return line;
}

TEST(Csv, QuotesATextWhereItMust) {
  EXPECT_EQ(textOf("plain text"), "plain text");
  EXPECT_EQ(textOf("a,b"), "\"a,b\"");
  EXPECT_EQ(textOf("3\" pipe"), "\"3\"\" pipe\"");
  EXPECT_EQ(textOf("two\r\nlines"), "\"two\r\nlines\"");
  EXPECT_EQ(textOf("中文，标点"), "中文，标点");
}

TEST(Csv, WritesAnEmptyTextAsItIsAsked) {
  EXPECT_EQ(textOf(""), "");
  EXPECT_EQ(written(""), "\"\"");
  EXPECT_EQ(written(std::nullopt), "");
}

}  // namespace
}  // namespace quillon::account
