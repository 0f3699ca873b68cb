// Digests, compared with published ones.
#include "workbench/presentation/sha256.h"

#include <gtest/gtest.h>

namespace quillon::workbench {
namespace {

// The examples of the algorithm's publication.
TEST(Sha256Test, AgreesWithPublishedDigests) {
  EXPECT_EQ(sha256Base64(""), "47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU=");
  EXPECT_EQ(sha256Base64("abc"), "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
  EXPECT_EQ(sha256Base64("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "JI1qYdIGOLjlwCaTDD5gOaM85Flk/yFn9uzt1BnbBsE=");
  EXPECT_EQ(sha256Base64(std::string(1000000, 'a')), "zcduXJkU+5KBocfihNc+Z/GAmkiklyAOBG05zMcRLNA=");
}

TEST(Sha256Test, GivesTheSameInHexadecimalDigits) {
  EXPECT_EQ(sha256Hexadecimal(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(sha256Hexadecimal("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

}  // namespace
}  // namespace quillon::workbench
