// SPDX-License-Identifier: GPL-3.0-or-later
// All is decided and drafted before the mesh is touched.
#include "tools/boolean/boolean.h"

#include "mesh/faces.h"
#include "platform/platform.h"
#include "tools/asking.h"
#include "tools/boolean/arrange.h"
#include "tools/boolean/contacts.h"
#include "tools/boolean/effort.h"
#include "tools/boolean/install.h"
#include "tools/boolean/outlines.h"
#include "tools/boolean/patches.h"
#include "tools/boolean/soup.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <vector>

namespace polyfab {
namespace {

using namespace boolean;

constexpr std::int32_t none = -1;

/// False when the question was left, or after a box.
bool askWhat(Want& want) {
    askText("keep which? (a all, u union, i common inside, d current face's part minus the rest)",
            "a");
    if (prompts.cancelled) return false;
    const char* const answer = prompts.answer[0] + std::strspn(prompts.answer[0], " ");
    for (const Want known : {Want::all, Want::unite, Want::common, Want::difference}) {
        if ((*answer | 0x20) != static_cast<char>(known)) continue;
        want = known;
        return true;
    }
    platform().message("", "I only know a, u, i and d", Icon::exclamation);
    return false;
}

std::int32_t polygonOf(const Soup& soup, std::int32_t face) {
    const auto found = std::find_if(soup.polygons.begin(), soup.polygons.end(),
                                    [face](const boolean::Polygon& p) { return p.face == face; });
    return found == soup.polygons.end() ? none
                                        : static_cast<std::int32_t>(found - soup.polygons.begin());
}

void tell(const Tally& tally, const Soup& soup) {
    note(counted(tally.cut, "face") + " cut, " + counted(tally.added, "new point") + ", "
         + counted(tally.removed, "face") + " removed"
         + (tally.turned == 0 ? "" : ", " + counted(tally.turned, "face") + " turned"));
    if (soup.notFinite != 0) {
        note(counted(soup.notFinite, "face") + " left out that "
             + (soup.notFinite == 1 ? "is" : "are") + " not finite");
    }
}

/// Looks at the Escape key, which a note tells of, however little was done. Of too much a box
/// tells.
bool mayGoOn(Effort& effort) {
    effort.look();
    if (effort.isTooMuch()) {
        platform().message("", "these faces meet in too many places: nothing has changed",
                           Icon::exclamation);
    }
    return !effort.isOver();
}

void weld(Mesh& mesh, Want want) {
    Effort effort;
    const Soup soup = makeSoup(mesh, effort);
    if (!mayGoOn(effort)) return;
    const std::int32_t current = want == Want::difference ? polygonOf(soup, mesh.curface) : none;
    if (want == Want::difference && current == none) {
        return platform().message("", "click a selected face of the part first", Icon::exclamation);
    }
    const BoxTree tree = treeOf(soup);
    Contacts contacts = findContacts(soup, tree, effort);
    if (!mayGoOn(effort)) return;
    ExactPoints points(soup.places);
    const std::vector<std::int32_t> idOf = resolve(soup, contacts, points, effort);
    if (!mayGoOn(effort)) return;
    const CutEdges cuts(contacts, idOf, points, effort);
    if (!mayGoOn(effort)) return;
    const Arrangement arrangement =
        arrange(soup, contacts, cuts, idOf, want != Want::all, points, effort);
    if (!mayGoOn(effort)) return;
    std::vector<Fate> fates(arrangement.cells.size(), Fate::kept);
    Outcome outcome = Outcome::chosen;
    if (want != Want::all) {
        outcome = chooseCells(mesh, soup, tree, points, arrangement, want, current, fates, effort);
    }
    if (!mayGoOn(effort)) return;
    const Outlines outlines(soup, arrangement, fates, points, effort);
    if (!mayGoOn(effort)) return;
    Tally tally;
    if (!install(mesh, soup, arrangement, fates, outlines, cuts, points, effort, tally)) {
        return void(mayGoOn(effort));
    }
    if (outcome == Outcome::notClosed) {
        platform().message("", "these faces do not enclose a volume: I have only welded them",
                           Icon::none);
    }
    tell(tally, soup);
}

} // namespace

void weldIntersecting(Mesh& mesh) {
    Want want = Want::all;
    if (!hasFacesTo(mesh, "weld") || !askWhat(want)) return;
    try {
        weld(mesh, want);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        platform().message("", "I can't work out how these faces meet: nothing has changed",
                           Icon::exclamation);
    }
}

} // namespace polyfab
