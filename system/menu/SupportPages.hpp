// The support information the host ships for the operator: a small text file split into pages.
#pragma once
#include <string>
#include <vector>

namespace Lanyx {

// Pages of the file at `path` (an already mapped path). Lines beginning with "#" are dropped, a
// line beginning with "$" ends a page, every other line is kept with its newline. A file that
// cannot be opened gives no pages; one ending right behind a "$" line gives an empty last page.
std::vector<std::string> ReadSupportPages(const std::string& path);

} // namespace Lanyx
