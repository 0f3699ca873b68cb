// What cmake/embed_pages.cmake makes of the folder pages/.
#pragma once

#include <span>
#include <string_view>

#include "workbench/desk/pages.h"

namespace quillon::workbench::desk {

struct EmbeddedPage {
  std::string_view path;  // "/" or "/assets/HASH/NAME"
  std::string_view contentType;
  std::string_view content;
};

std::span<const EmbeddedPage> embeddedPages();
std::span<const PageLicence> embeddedLicences();

}  // namespace quillon::workbench::desk
