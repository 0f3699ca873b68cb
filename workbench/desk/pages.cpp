#include "workbench/desk/pages.h"

#include <algorithm>

#include "workbench/desk/embedded_pages.h"

namespace quillon::workbench::desk {

std::optional<DeskResponse> findPage(std::string_view path) {
  const auto pages = embeddedPages();
  const auto found = std::ranges::find(pages, path, &EmbeddedPage::path);
  if (found == pages.end()) return std::nullopt;
  DeskResponse response;
  response.contentType = found->contentType;
  response.body = found->content;
  // The start page names the others by their hash: it has to be the newest one.
  if (path != "/") response.headers.emplace_back("Cache-Control", "private, max-age=31536000, immutable");
  return response;
}

std::span<const PageLicence> pageLicences() {
  return embeddedLicences();
}

}  // namespace quillon::workbench::desk
