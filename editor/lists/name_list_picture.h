// SPDX-License-Identifier: GPL-3.0-or-later
// The picture of a name list.
#pragma once

#include "editor/lists/name_list_table.h"
#include "platform/platform.h"

#include <vector>

namespace polyfab {

/// The entries from the list's first column on, in a window of this client size: picked ones are
/// tinted and marked by the right pane's background picture, the current one is red. `counts` are
/// the faces of all entries. Too small a window stays empty.
[[nodiscard]] Bitmap drawNameList(const NameListRow& list, const std::vector<int>& counts,
                                  Size client);

} // namespace polyfab
