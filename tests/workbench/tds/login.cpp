#include "tests/workbench/tds/login.h"

namespace quillon::tds {

namespace {

// Options of a pre-login.
constexpr Byte versionOption = 0, encryptionOption = 1, instanceOption = 2, marsOption = 4, endOfOptions = 0xff;

constexpr std::size_t fixedPartOfLogin = 94;

// A place and a length in UTF-16 units.
std::span<const Byte> fieldOf(std::span<const Byte> data, ByteReader& places) {
  const std::size_t offset = places.u16();
  const std::size_t length = places.u16();
  return partOf(data, offset, length * 2);
}

// A password goes with the halves of its bytes exchanged and half of the bits turned.
std::string readPassword(std::span<const Byte> field) {
  Bytes plain;
  for (const Byte hidden : field) {
    const auto turned = static_cast<Byte>(hidden ^ 0xa5U);
    plain.push_back(static_cast<Byte>(turned << 4U | turned >> 4U));
  }
  return utf8Of(plain);
}

}  // namespace

PreLogin readPreLogin(std::span<const Byte> data) {
  PreLogin preLogin;
  for (ByteReader options(data);;) {
    const Byte option = options.u8();
    if (option == endOfOptions) return preLogin;
    const std::size_t offset = options.u16HighFirst();
    const std::size_t length = options.u16HighFirst();
    const auto value = partOf(data, offset, length);
    if (option == encryptionOption) preLogin.encryption = static_cast<Encryption>(ByteReader(value).u8());
  }
}

Bytes preLoginReply() {
  struct Option {
    Byte name;
    Bytes value;
  };
  const std::vector<Option> options = {{versionOption, {11, 0, 0x0c, 0x38, 0, 0}},  // what 7.4 came with
                                       {encryptionOption, {static_cast<Byte>(Encryption::notSupported)}},
                                       {instanceOption, {0}},
                                       {marsOption, {0}}};
  constexpr std::size_t sizeOfPlace = 5;
  Bytes places, values;
  for (const Option& option : options) {
    putU8(places, option.name);
    putU16HighFirst(places, options.size() * sizeOfPlace + 1 + values.size());
    putU16HighFirst(places, option.value.size());
    putBytes(values, option.value);
  }
  putU8(places, endOfOptions);
  putBytes(places, values);
  return places;
}

Login readLogin(std::span<const Byte> data) {
  ByteReader fixed(partOf(data, 0, fixedPartOfLogin));
  const std::size_t length = fixed.u32();
  if (length < fixedPartOfLogin) throw ProtocolError("a login is too short");
  data = partOf(data, 0, length);
  Login login;
  login.version = fixed.u32();
  login.packetSize = fixed.u32();
  fixed.bytes(24);       // program, process and connection of the client; options; time zone and language
  fieldOf(data, fixed);  // machine
  login.user = utf8Of(fieldOf(data, fixed));
  login.password = readPassword(fieldOf(data, fixed));
  login.application = utf8Of(fieldOf(data, fixed));
  fieldOf(data, fixed);  // server
  fixed.bytes(4);        // extensions: none of them is taken up
  fieldOf(data, fixed);  // library
  fieldOf(data, fixed);  // language
  login.database = utf8Of(fieldOf(data, fixed));
  return login;
}

std::string readBatch(std::span<const Byte> data) {
  const std::size_t headers = ByteReader(data).u32();
  constexpr std::size_t sizeOfLength = 4;
  if (headers < sizeOfLength || headers > data.size()) throw ProtocolError("a batch has headers of a wrong length");
  return utf8Of(data.subspan(headers));
}

}  // namespace quillon::tds
