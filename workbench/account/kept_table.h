// A result table that is to stay: from the scratch file of its run into the account.
#pragma once

#include <filesystem>
#include <string_view>

namespace quillon::account {

// Copies the table called `name` in the scratch file to the account, as it is declared, with its rows in their order; in
// one step, so that nobody sees it half filled. Throws tsql::SqlError when the account cannot be written or has an
// object of that name.
void keepTable(const std::filesystem::path& account, const std::filesystem::path& scratch, std::string_view name);

}  // namespace quillon::account
