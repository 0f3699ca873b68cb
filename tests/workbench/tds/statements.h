// Statements about the connection itself, which drivers send and the embedded engine does not have.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon::tds {

// The database of a batch that is `Use name`, with or without brackets around the name and a semicolon behind it.
std::optional<std::string> databaseUsedBy(std::string_view batch);
// Whether the batch is `Set TextSize n`. Texts are sent whole, however long.
bool setsSizeOfTexts(std::string_view batch);
// Whether the batch is `Select @@Version As version`.
bool asksForVersion(std::string_view batch);

}  // namespace quillon::tds
