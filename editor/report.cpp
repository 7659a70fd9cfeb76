// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/report.h"

#include "editor/command_table.h"
#include "editor/commands/selection.h"
#include "editor/editor_state.h"
#include "mesh/mesh.h"
#include "mesh/store.h"
#include "platform/platform.h"
#include "workbench/state.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace polyfab {
namespace {

using Json = nlohmann::ordered_json;

/// Names come from files and may be anything but UTF-8; such bytes are shown as U+FFFD.
std::string line(const Json& object) {
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json vector(const Vec3& v) { return {v.x, v.y, v.z}; }

Json keysDown() {
    Json keys = Json::array();
    for (std::size_t code = 0; code < workbench.keys.size(); ++code) {
        if (workbench.keys[code] != 0) keys.push_back(code);
    }
    return keys;
}

/// The ids of the menu toggles that are on.
Json commandsChecked() {
    Json ids = Json::array();
    for (const Command& command : commandTable()) {
        if (command.checked != nullptr && command.checked()) ids.push_back(command.id);
    }
    return ids;
}

void addCounts(Json& state) {
    const Mesh& mesh = *OB;
    state["changed"] = mesh.changed;
    state["np"] = mesh.np;
    state["nq"] = mesh.nq;
    state["nf"] = mesh.nf;
    state["nt"] = mesh.nt;
    state["nd"] = mesh.nd;
    state["ng"] = mesh.ng;
    state["nmat"] = mesh.nmat;
    state["ntma"] = mesh.ntma;
    state["nprt"] = mesh.nprt;
    state["npmax"] = mesh.npmax;
    state["nqmax"] = mesh.nqmax;
    state["nfmax"] = mesh.nfmax;
    state["curvertex"] = mesh.curvertex;
    state["curtexcoord"] = mesh.curtexcoord;
    state["curface"] = mesh.curface;
    state["curgroup"] = mesh.curgroup;
    state["curmat"] = mesh.curmat;
    state["curtma"] = mesh.curtma;
    state["curprt"] = mesh.curprt;
}

Json corner(const FaceCorner& q) {
    const int t = q.t != nullptr ? indexIn(OB->texcoords, q.t) : -1;
    const int d = q.d != nullptr ? indexIn(OB->normals, q.d) : -1;
    return {indexIn(OB->points, q.p), t, d, q.edgeuse};
}

Json face(const Face& fac) {
    if (fac.q == nullptr) return nullptr;
    Json object = {{"g", fac.g},     {"mat", fac.mat},           {"tma", fac.tma},
                   {"prt", fac.prt}, {"selected", fac.selected}, {"corners", Json::array()}};
    for (int k = 0; k < fac.n; ++k) object["corners"].push_back(corner(fac.q[k]));
    return object;
}

/// A list with one entry per element.
template <typename T, typename Make>
Json list(const T* array, int count, Make make) {
    Json entries = Json::array();
    for (int i = 0; i < count; ++i) entries.push_back(make(array[i]));
    return entries;
}

} // namespace

std::string stateJson() {
    const EditorState& editor = editorState;
    Json state = {{"event", "state"},
                  {"title", platform().title()},
                  {"mode", editor.mode},
                  {"modeName", workbench.modeName},
                  {"axis", std::string(editor.resizeAxis != 0 ? 1 : 0, editor.resizeAxis)},
                  {"subview", editor.subview},
                  {"file", workbench.fileName},
                  {"busy", workbench.busy ? 1 : 0}};
    addCounts(state);
    const auto live = [](const Face& f) { return f.q != nullptr; };
    const auto selected = [](const Face& f) { return f.q != nullptr && f.selected; };
    state["liveFaces"] = std::count_if(OB->faces, OB->faces + OB->nf, live);
    state["selectedFaces"] = std::count_if(OB->faces, OB->faces + OB->nf, selected);
    state["selectedPoints"] = countSelectedPoints();
    state["settable"] = {vector(workbench.settable[0]), vector(workbench.settable[1])};
    state["keys"] = keysDown();
    state["history"] = editor.buttons;
    state["mouse"] = vector(editor.mouse);
    state["checks"] = commandsChecked();
    state["storeBlocks"] = storeBlocks();
    return line(state);
}

std::string dumpJson() {
    const Mesh& mesh = *OB;
    Json dump = {{"event", "dump"}};
    dump["points"] = list(mesh.points, mesh.np, [](const Point& p) { return Json{p.x, p.y, p.z}; });
    dump["texcoords"] = list(mesh.texcoords, mesh.nt, [](const TexCoord& t) {
        return Json{t.u, t.v};
    });
    dump["normals"] = list(mesh.normals, mesh.nd, [](const Normal& d) {
        return Json{d.x, d.y, d.z};
    });
    dump["groups"] = list(mesh.groups, mesh.ng, [](const Group& g) {
        return Json{{"name", g.name}, {"selected", g.selected}};
    });
    dump["materials"] = list(mesh.materials, mesh.nmat, [](const Material& m) {
        return Json{{"name", m.name}, {"color", m.color}, {"selected", m.selected}};
    });
    const auto selected = [](const auto& element) { return Json(element.selected); };
    dump["tmas"] = list(mesh.tmas, mesh.ntma, selected);
    dump["parts"] = list(mesh.parts, mesh.nprt, selected);
    dump["mtllib"] = mesh.mtllib;
    dump["faces"] = list(mesh.faces, mesh.nf, face);
    return line(dump);
}

} // namespace polyfab
