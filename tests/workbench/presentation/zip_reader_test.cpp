// ZIP archives: members that are stored and that are compressed, and archives that are damaged or lie.
#include "workbench/presentation/zip_reader.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace quillon::workbench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t much = 1'000'000;

std::string number(std::size_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i)
    text += static_cast<char>(value >> (8 * i) & 0xffU);
  return text;
}

struct Member {
  std::string name;
  std::string bytes;  // as they lie in the archive
  std::size_t size = 0;
  std::size_t method = 0;
  std::size_t flags = 0;
};

std::string archive(const std::vector<Member>& members, const std::string& comment = "") {
  std::string text, directory;
  for (const Member& member : members) {
    const std::string sizes =
        number(0, 4) + number(member.bytes.size(), 4) + number(member.size, 4) + number(member.name.size(), 2);
    directory += "PK\x01\x02" + number(20, 2) + number(20, 2) + number(member.flags, 2) + number(member.method, 2) +
                 number(0, 4) + sizes + number(0, 2) + number(0, 2) + number(0, 2) + number(0, 2) + number(0, 4) +
                 number(text.size(), 4) + member.name;
    text += "PK\x03\x04" + number(20, 2) + number(member.flags, 2) + number(member.method, 2) + number(0, 4) + sizes +
            number(0, 2) + member.name + member.bytes;
  }
  return text + directory + "PK\x05\x06" + number(0, 4) + number(members.size(), 2) + number(members.size(), 2) +
         number(directory.size(), 4) + number(text.size(), 4) + number(comment.size(), 2) + comment;
}

// "ledger " twenty times.
const std::string compressed("\xcb\x49\x4d\x49\x4f\x2d\x52\xc8\x19\x0c\x14\x00", 12);
constexpr std::size_t plainSize = 140;

TEST(ZipReader, ReadsStoredAndCompressedMembers) {
  const std::string bytes = archive({{.name = "a.txt", .bytes = "plain", .size = 5},
                                     {.name = "b/c.txt", .bytes = compressed, .size = plainSize, .method = 8}},
                                    "a comment");
  const ZipReader zip(bytes);
  EXPECT_THAT(zip.names(), ElementsAre("a.txt", "b/c.txt"));
  EXPECT_EQ(zip.member("a.txt", much), "plain");
  std::string plain;
  for (int i = 0; i < 20; ++i)
    plain += "ledger ";
  EXPECT_EQ(zip.member("b/c.txt", much), plain);
  EXPECT_EQ(zip.member("c.txt", much), std::nullopt);
}

TEST(ZipReader, HasNoMembersInAnEmptyArchive) {
  const std::string bytes = archive({});
  EXPECT_THAT(ZipReader(bytes).names(), IsEmpty());
}

TEST(ZipReader, ReadsNoMoreThanItIsLet) {
  const std::string bytes = archive({{.name = "a", .bytes = compressed, .size = plainSize, .method = 8}});
  EXPECT_TRUE(ZipReader(bytes).member("a", plainSize));
  EXPECT_THROW(ZipReader(bytes).member("a", plainSize - 1), std::invalid_argument);
}

TEST(ZipReader, RefusesMembersThatAreNotWhatTheyPromise) {
  const std::vector<Member> wrong = {
      {.name = "a", .bytes = compressed, .size = plainSize - 1, .method = 8},
      {.name = "a", .bytes = compressed, .size = plainSize + 1, .method = 8},
      {.name = "a", .bytes = compressed, .size = 1'000'000'000, .method = 8},  // more than so few bytes can hold
      {.name = "a", .bytes = "\xff\xff\xff", .size = 3, .method = 8},
      {.name = "a", .bytes = "plain", .size = 6},
      {.name = "a", .bytes = "plain", .size = 5, .method = 12}};
  for (const Member& member : wrong) {
    const std::string bytes = archive({member});
    EXPECT_THROW(ZipReader(bytes).member("a", std::size_t{1} << 31U), std::invalid_argument) << member.size;
  }
}

TEST(ZipReader, RefusesWhatIsNoArchive) {
  EXPECT_THROW(ZipReader(""), std::invalid_argument);
  EXPECT_THROW(ZipReader("PK"), std::invalid_argument);
  const std::string letters(70'000, 'P');
  EXPECT_THROW(ZipReader{letters}, std::invalid_argument);
  const std::string encrypted = archive({{.name = "a", .bytes = "plain", .size = 5, .method = 0, .flags = 1}});
  EXPECT_THROW(ZipReader{encrypted}, std::invalid_argument);
}

TEST(ZipReader, ReadsNothingBeyondAnArchiveThatIsCutOrChanged) {
  const std::string bytes = archive({{.name = "a.txt", .bytes = "plain", .size = 5},
                                     {.name = "b.txt", .bytes = compressed, .size = plainSize, .method = 8}});
  const auto read = [](const std::string& text) {
    try {
      const ZipReader zip(text);
      for (const std::string& name : zip.names())
        zip.member(name, much);
      return true;
    } catch (const std::invalid_argument&) {
      return false;
    }
  };
  EXPECT_TRUE(read(bytes));
  for (std::size_t length = 0; length < bytes.size(); ++length)
    EXPECT_FALSE(read(bytes.substr(0, length))) << length;
  // Some changes leave it an archive; whatever a byte becomes, the sanitizers find no wrong access.
  std::size_t refused = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    std::string changed = bytes;
    changed[at] = '\xff';
    refused += read(changed) ? 0 : 1;
  }
  EXPECT_GT(refused, 0u);
}

}  // namespace
}  // namespace quillon::workbench
