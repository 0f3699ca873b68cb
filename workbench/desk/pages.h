// The desk's pages, and the libraries that they use: all of it is part of the program (cmake/embed_pages.cmake).
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "workbench/desk/handler.h"

namespace quillon::workbench::desk {

// The page under that path: "/", or "/assets/HASH/NAME" for what it is made of. HASH is of everything in that folder, so
// that a browser may keep what it has once got. Nothing when there is no such page.
std::optional<DeskResponse> findPage(std::string_view path);

// What the pages contain of other people, and its terms.
struct PageLicence {
  std::string_view name;     // "regular-table 0.9.2"
  std::string_view licence;  // its short name, "Apache-2.0"
  std::string_view text;
};
std::span<const PageLicence> pageLicences();

}  // namespace quillon::workbench::desk
