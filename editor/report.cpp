// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/report.h"

#include "display/backgrounds.h"
#include "display/options.h"
#include "display/texture_slots.h"
#include "editor/command_table.h"
#include "editor/commands/rendering.h"
#include "editor/commands/selection.h"
#include "editor/editor_state.h"
#include "editor/json_pieces.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/store.h"
#include "platform/platform.h"
#include "workbench/state.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace polyfab {
namespace {

using Json = nlohmann::ordered_json;

/// Texts may hold bytes that are no UTF-8; such are shown as U+FFFD.
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

/// Of each texture map its picture, or null.
Json texturePictures() {
    Json pictures = Json::array();
    for (const TextureSlot& slot : textureSlots()) {
        if (slot.image == nullptr) {
            pictures.push_back(nullptr);
        } else {
            pictures.push_back({{"file", slot.path},
                                {"width", slot.image->width},
                                {"height", slot.image->height}});
        }
    }
    return pictures;
}

/// Of what is behind the left and the right pane the size, or null.
Json backgroundImages() {
    Json images = Json::array();
    for (const bool left : {true, false}) {
        const Image* const image = backgroundOf(left);
        images.push_back(
            image == nullptr ? Json() : Json{{"width", image->width}, {"height", image->height}});
    }
    return images;
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

/// Begins a member that is a list and adds one entry per element to it.
template <typename T, typename Add>
void addMember(JsonPieces& out, const char* name, const T* array, int count, Add add) {
    out.add(",\"", name, "\":[");
    for (int i = 0; i < count; ++i) {
        if (i > 0) out.add(",");
        add(array[i]);
    }
    out.add("]");
}

void addFace(JsonPieces& out, const Mesh& mesh, const Face& fac) {
    if (!isLive(fac)) return out.add("null");
    out.add(R"({"g":)", fac.g, R"(,"mat":)", fac.mat, R"(,"tma":)", fac.tma);
    out.add(R"(,"prt":)", fac.prt, R"(,"selected":)", fac.selected);
    addMember(out, "corners", fac.q, fac.n, [&](const FaceCorner& q) {
        const int t = q.t != nullptr ? indexIn(mesh.texcoords, q.t) : -1;
        const int d = q.d != nullptr ? indexIn(mesh.normals, q.d) : -1;
        out.addList(indexIn(mesh.points, q.p), t, d, q.edgeuse);
    });
    out.add("}");
}

void addNames(JsonPieces& out, const Mesh& mesh) {
    addMember(out, "groups", mesh.groups, mesh.ng, [&](const Group& g) {
        out.add(R"({"name":)");
        out.addString(g.name);
        out.add(R"(,"selected":)", g.selected, "}");
    });
    addMember(out, "materials", mesh.materials, mesh.nmat, [&](const Material& m) {
        out.add(R"({"name":)");
        out.addString(m.name);
        out.add(R"(,"color":)", m.color, R"(,"selected":)", m.selected, "}");
    });
    const auto addSelected = [&](const auto& element) { out.add(element.selected); };
    addMember(out, "tmas", mesh.tmas, mesh.ntma, addSelected);
    addMember(out, "parts", mesh.parts, mesh.nprt, addSelected);
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
    state["liveFaces"] = std::count_if(OB->faces, OB->faces + OB->nf, isLive);
    state["selectedFaces"] = std::count_if(OB->faces, OB->faces + OB->nf, isLiveSelected);
    state["selectedPoints"] = countSelectedPoints();
    state["newFace"] = editor.newFace;
    state["settable"] = {vector(workbench.settable[0]), vector(workbench.settable[1])};
    state["keys"] = keysDown();
    state["history"] = editor.buttons;
    state["mouse"] = vector(editor.mouse);
    state["checks"] = commandsChecked();
    state["light"] = {displayOptions.lightFromRight, displayOptions.lightFromAbove};
    state["background"] = renderBackground();
    state["backgroundImages"] = backgroundImages();
    state["textureMap"] = workbench.textureNumber;
    state["textureMaps"] = texturePictures();
    state["storeBlocks"] = storeBlocks();
    return line(state);
}

void writeDump(const TextSink& sink) {
    const Mesh& mesh = *OB;
    JsonPieces out(sink);
    out.add(R"({"event":"dump")");
    addMember(out, "points", mesh.points, mesh.np,
              [&](const Point& p) { out.addList(p.x, p.y, p.z); });
    addMember(out, "texcoords", mesh.texcoords, mesh.nt,
              [&](const TexCoord& t) { out.addList(t.u, t.v); });
    addMember(out, "normals", mesh.normals, mesh.nd,
              [&](const Normal& d) { out.addList(d.x, d.y, d.z); });
    addNames(out, mesh);
    out.add(R"(,"mtllib":)");
    out.addString(mesh.mtllib);
    addMember(out, "faces", mesh.faces, mesh.nf, [&](const Face& fac) { addFace(out, mesh, fac); });
    out.add("}");
    out.finish();
}

} // namespace polyfab
