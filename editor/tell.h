// SPDX-License-Identifier: GPL-3.0-or-later
// Notes of commands whose functions tell nothing: what they did, or for lack of what nothing, comes
// from a table and from the counts of faces before and after.
#pragma once

#include "editor/editor_state.h"

namespace polyfab {

struct Command;

/// To be made before the command is carried out, which may be none.
class Teller {
  public:
    explicit Teller(const Command* carriedOut);

    /// The command has been carried out, the faces are counted anew. `altered`: it changed
    /// something that is saved.
    void tell(bool altered) const;

  private:
    const Command* command;
    const char* lacking = nullptr; ///< what it needed and did not find
    FaceCounts before = editorState.faces;
};

/// Tells how many faces are selected.
void tellSelection();

} // namespace polyfab
