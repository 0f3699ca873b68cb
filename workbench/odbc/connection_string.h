// Connection strings, ODBC's and ADO's, read in one place: "keyword=value" with semicolons between them.
//
// Blanks around a keyword and around a value do not count, nor does the letter case of a keyword, nor an empty place
// between two semicolons. A value that holds a semicolon stands in braces, as ODBC writes it, or in single or double
// quotes, as ADO does. The closing mark is doubled where the value itself has it; what follows a closing mark up to the
// next semicolon is passed over; without a closing mark the value goes to the end of the text. A mark inside a bare
// value is a character like any other.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quillon::odbc {

class ConnectionString {
 public:
  struct Attribute {
    std::string keyword;  // as it is written; empty when there is no "="
    std::string value;    // without its quotes or braces

    // Whether this is the attribute `name`, in any letter case.
    bool is(std::string_view name) const;
    // Whether it is a password: PWD, as ODBC has it, or Password.
    bool isPassword() const;
  };

  ConnectionString() = default;
  // Any text can be read; one that is no connection string comes as one attribute without a keyword, or several.
  explicit ConnectionString(std::string_view text);

  // As it was written, password and all.
  const std::string& text() const { return text_; }
  // In order; empty places are left out.
  const std::vector<Attribute>& attributes() const { return attributes_; }
  bool has(std::string_view keyword) const;
  // Whether ODBC's driver manager can take it: it names a driver or a data source (Driver, DSN, FileDSN).
  bool namesDriver() const;

  // The value of an attribute, the first of several; empty when there is none.
  std::string valueOf(std::string_view keyword) const;
  // The text without that attribute.
  std::string without(std::string_view keyword) const;
  // The text as it may be shown: "PWD=***" in place of each password, everything else as it stands.
  std::string withoutPassword() const;
  // `message` with "***" in place of each password, as it is written here and as it reads without its quotes.
  std::string withoutPasswordIn(std::string message) const;

 private:
  std::string text_;
  std::vector<Attribute> attributes_;
};

// `value` as ADO writes it between double quotes; reads back as it was.
std::string inDoubleQuotes(std::string_view value);

}  // namespace quillon::odbc
