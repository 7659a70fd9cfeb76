// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands.h"

#include "editor/face_commands.h"
#include "editor/selection.h"
#include "editor/state.h"
#include "formats/import_mesh.h"
#include "formats/mesh_files.h"
#include "mesh/mesh.h"
#include "mesh/name_commands.h"
#include "platform/platform.h"

#include <algorithm>
#include <array>

namespace polyfab {
namespace {

constexpr const char* file = "&file";
constexpr const char* write = "&write";
constexpr const char* mode = "&mode";
constexpr const char* tools = "&tools";
constexpr const char* graphs = "&graphs";
constexpr const char* facesMenu = "f&aces";
constexpr const char* vertexes = "&vertexes";
constexpr const char* texture = "te&xture maps";
constexpr const char* groups = "gro&ups";
constexpr const char* materials = "mater&ials";
constexpr const char* parts = "&parts";
constexpr const char* display = "&display";
constexpr const char* rendering = "&rendering";
constexpr const char* makeObject = "make &object";
constexpr const char* help = "&help";

constexpr void (*later)() = nullptr;

template <void (*act)(Mesh&)>
void onMesh() {
    act(*OB);
}

constexpr auto table = std::to_array<Command>({
    {256, file, "&read mesh file", readMeshFile},
    {296, file, "&append mesh file", appendMeshFile},
    {2001, file, "&import other mesh file", importOtherMesh},
    {262, file, "e&xit", [] { platform().requestClose(); }},

    {257, write, "&DXF mesh file", writeDxfMeshFile},
    {258, write, "&3DS mesh file", write3dsMeshFile},
    {259, write, "&OBJ mesh file", writeObjMeshFile},
    {2002, write, "e&xport other mesh file", exportOtherMesh},

    {358, mode, "go to defa&ult mode", later},
    {348, mode, "go to &edge-handling mode", later},
    {349, mode, "go to &face-handling mode", later},
    {350, mode, "go to &group-handling mode", later},
    {351, mode, "go to &move-an-object mode", later},
    {352, mode, "go to move-the-&display mode", later},
    {353, mode, "go to &vertex-handling mode", later},
    {357, mode, "go to set-&left-cutoff mode", later},
    {359, mode, "go to resize-an-o&bject mode", later},
    {361, mode, "go to &texture-map-coordinate-handling mode", later},
    {362, mode, "go to set-&right-cutoff mode", later},
    {363, mode, "go to re&size-the-display mode", later},
    {364, mode, "go to rotate-around-x mode: &x", later},
    {365, mode, "go to rescale-in-x mode: &i", later},
    {366, mode, "go to rotate-around-y mode: &y", later},
    {367, mode, "go to rescale-in-y mode: &j", later},
    {368, mode, "go to rotate-around-z mode: &z", later},
    {369, mode, "go to rescale-in-z mode: &k", later},
    {1062, mode, "go to twist-around-x mode: &1", later},
    {1063, mode, "go to twist-around-y mode: &2", later},
    {1064, mode, "go to twist-around-z mode: &3", later},
    {1040, mode, "go to move-by-gra&phs mode", later},
    {1049, mode, "go to s&cale-by-graphs mode", later},

    {260, tools, "&info", showInfo},
    {261, tools, "color&sep", later},
    {267, tools, "collect &garbage", collectGarbageNow},
    {271, tools, "add new rotation &after existing rotations", later},
    {297, tools, "rotate &view", later},
    {281, tools, "reset a&ttitude", later},
    {298, tools, "rotate &objects", later},
    {324, tools, "contro&l smoothing", later},
    {371, tools, "s&moothing", later},
    {372, tools, "move all vertexes out by a set &distance", later},
    {398, tools, "duplicate selected faces, &join edges", later},
    {389, tools, "du&plicate selected faces", later},
    {386, tools, "remove &normals (= `vn' lines of .OBJ files) from selected faces", later},
    {388, tools, "remove te&xture map info (= `vt' lines of .OBJ files) from selected faces",
     later},
    {394, tools, "&boolean: weld intersecting selected faces", later},
    {409, tools, "mi&rror-image in x or y or z coordinates as on screen", later},
    {413, tools, "chang&e sign of absolute x or y or z", later},
    {1055, tools, "s&wop y and z absolute axes", later},
    {1084, tools, "rotate 90° degrees clockwise about the absolute y-axis", later},
    {415, tools, "output group names to text &file",
     [] { writeGroupNames(*OB, editorState.fileName); }},
    {1073, tools, "output material names to text file",
     [] { writeMaterialNames(*OB, editorState.fileName); }},
    {1024, tools, "move selected faces to &center the box on absolute x or y or z = 0", later},
    {1051, tools, "if 2 selected faces have all the same corners, remove one: &7", later},
    {1057, tools, "find absolute volume bounded by selected faces: &8", later},
    {1058, tools, "say absolute size of box: &9", later},
    {1082, tools, "say absolute range of box in x and y and z", later},
    {1067, tools, "unselect all selected duplicated faces: &0", later},
    {1070, tools, "display with absolute (0,0,0) in middles of panes: &z", later},
    {1085, tools, "noise", later},
    {1037, tools, "special", later},

    {1048, graphs, "start &editing the graphs", later},
    {1041, graphs, "&help about graphs", later},
    {1042, graphs, "set to move or scale x as a function of y: &1", later},
    {1043, graphs, "set to move or scale x as a function of z: &2", later},
    {1044, graphs, "set to move or scale y as a function of x: &3", later},
    {1045, graphs, "set to move or scale y as a function of z: &4", later},
    {1046, graphs, "set to move or scale z as a function of x: &5", later},
    {1047, graphs, "set to move or scale z as a function of y: &6", later},
    {1075, graphs, "set to scale as a function of &x", later},
    {1076, graphs, "set to scale as a function of &y", later},
    {1077, graphs, "set to scale as a function of &z", later},

    {280, facesMenu, "make all faces show &anticlockwise the same way", orientFaces},
    {290, facesMenu, "&select all faces", selectAllFaces},
    {291, facesMenu, "&unselect all faces", unselectAllFaces},
    {292, facesMenu, "select faces in &box", later},
    {293, facesMenu, "unselect faces in box : &9", later},
    {294, facesMenu, "select faces out o&f box", later},
    {295, facesMenu, "unselect faces ou&t of box", later},
    {325, facesMenu, "unselect faces &clockwise on left pane", later},
    {326, facesMenu, "unselect faces ant&iclockwise on left pane", later},
    {299, facesMenu, "&delete selected faces", later},
    {316, facesMenu, "de&lete unselected faces", later},
    {268, facesMenu, "det&riangularize (quickly)", later},
    {1083, facesMenu, "detriangularize (thoroughly)", later},
    {274, facesMenu, "trian&gularize", later},
    {344, facesMenu, "break up faces with &5 or more sides", later},
    {360, facesMenu, "find and start showing bad &edges", later},
    {395, facesMenu, "s&plit up re-entrant or badly out-of-plane faces", later},
    {1056, facesMenu, "select re-entrant or badly out-of-plane faces", later},
    {284, facesMenu, "set to `n&o current face'", later},
    {396, facesMenu, "set to `no &curren&t edge'", later},
    {403, facesMenu, "split selected faces along the box's maximum &x", later},
    {404, facesMenu, "split selected faces along the box's maximum &y", later},
    {405, facesMenu, "split selected faces along the box's maximum z: &1", later},
    {406, facesMenu, "split selected faces at intervals in the box's x range: &2", later},
    {407, facesMenu, "split selected faces at intervals in the box's y range: &3", later},
    {408, facesMenu, "split selected faces at intervals in the box's z range: &7", later},
    {1035, facesMenu, "insert faces to fill a &hole", later},
    {1052, facesMenu, "insert faces to fill all holes: &8", later},
    {397, facesMenu, "&4: reverse the corner order in all selected faces", reverseSelectedFaces},
    {1066, facesMenu, "&6: unselect all selected faces with less than 5 corners", later},
    {1088, facesMenu, "unselect all selected faces with non-&zero area", later},

    {390, vertexes, "weld &all very close points", later},
    {1061, vertexes, "&bring all very close points together, don't weld them", later},
    {269, vertexes, "&weld all very close points which are on loose edges", later},
    {317, vertexes, "w&eld all very close points, by edges and repeat", later},
    {329, vertexes, "&thin out the faces", later},
    {370, vertexes, "separate surfaces that are &glued at one point", later},
    {393, vertexes, "&unweld selected from unselected faces", later},
    {1050, vertexes, "find &far it is between the two settable points", later},

    {277, texture, "s&tart editing texture map coords", later},
    {528, texture, "new texture map: &planar", later},
    {515, texture, "new texture map: &cylinder", later},
    {533, texture, "new texture map: cu&bic", later},
    {517, texture, "new texture map: cylinder with &ends", later},
    {276, texture, "&select texture map areas by menu", later},
    {380, texture, "go to select-texture-map-areas-by-c&licking mode", later},
    {265, texture, "make texture map of selected faces on &file", later},
    {273, texture, "&weld equal texture map coords of selected faces", later},
    {288, texture, "&unweld texture map coords of selected from unselected faces", later},
    {272, texture, "reverse texture map u of selected faces: &1", later},
    {286, texture, "reverse texture map v of selected faces: &2", later},
    {320, texture, "swop texture map u and v of selected faces: &3", later},
    {321, texture, "bring texture map coords into the range 0 to 1: &4", later},
    {387, texture, "say the range of texture map coords: &5", later},
    {391, texture, "set the range of texture map coords: &6", later},
    {275, texture, "find texture map &areas", later},
    {285, texture, "make texture map areas into &groups", later},

    {264, groups, "&select groups by menu", later},
    {378, groups, "go to select-groups-by-&clicking mode", later},
    {322, groups, "put selected &faces into new group", onMesh<putSelectedIntoNewGroup>},
    {1025, groups, "&amalgamate groups with same name", onMesh<amalgamateGroups>},

    {328, materials, "&select materials by menu", later},
    {379, materials, "go to select-materials-by-&clicking mode", later},
    {327, materials, "put selected &faces into new material", onMesh<putSelectedIntoNewMaterial>},
    {1026, materials, "a&malgamate materials with same name", onMesh<amalgamateMaterials>},

    {278, parts, "&select parts by menu", later},
    {381, parts, "go to select-parts-by-&clicking mode", later},
    {279, parts, "&find parts", later},
    {287, parts, "make parts into &groups", later},
    {1072, parts, "make parts into &materials", later},
    {402, parts, "&unweld selected parts", later},
    {1065, parts, "delete all selected parts that contain only &1 face", later},

    {382, display, "show &vertexes", later},
    {346, display, "show &selected vertexes", later},
    {347, display, "show &normals", later},
    {270, display, "show bad &edges", later},
    {266, display, "show unselected faces &grey", later},
    {323, display, "show &loose edges", later},
    {354, display, "&hide faces that face away", later},
    {373, display, "show the &box", later},
    {1029, display, "show the &current face, edge and vertex", later},
    {1030, display, "show the settable &points", later},
    {1031, display, "show the &axes", later},
    {1032, display, "show a g&rid", later},
    {1033, display, "show &face and vertex numbers", later},
    {1034, display, "show the pane backgroun&ds", later},

    {330, rendering, "&render the left pane", later},
    {331, rendering, "render the r&ight pane", later},
    {332, rendering, "render &flat", later},
    {333, rendering, "render &smooth", later},
    {334, rendering, "render with &texture maps", later},
    {335, rendering, "set the &light", later},
    {355, rendering, "set the background &colour", later},
    {410, rendering, "read &background image of left pane", later},
    {345, rendering, "read background image of right &pane", later},
    {336, rendering, "select texture map &0", later},
    {337, rendering, "select texture map &1", later},
    {338, rendering, "select texture map &2", later},
    {339, rendering, "select texture map &3", later},
    {340, rendering, "select texture map &4", later},
    {341, rendering, "select texture map &5", later},
    {342, rendering, "select texture map &6", later},
    {343, rendering, "select texture map &7", later},
    {383, rendering, "read te&xture map image", later},
    {384, rendering, "&write texture map image", later},
    {1069, rendering, "put the rendered picture on the clipb&oard", later},

    {282, makeObject, "&cube", later},
    {392, makeObject, "&sphere", later},
    {401, makeObject, "c&ylinder with flat ends", later},
    {414, makeObject, "cylinder with rounded &ends", later},
    {412, makeObject, "&torus", later},
    {1036, makeObject, "s&hower of sparks", later},
    {1054, makeObject, "&pipe along the current face's edge", later},
    {1038, makeObject, "solid of revolution by spi&nning the current face", later},
    {1068, makeObject, "face with spira&l edge", later},
    {283, makeObject, "alien &rifle", later},

    {263, help, "&help", [] { platform().openHelp(); }},
});

constexpr bool idsAreUnique() {
    for (std::size_t i = 0; i < table.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (table[i].id == table[j].id) return false;
        }
    }
    return true;
}

static_assert(idsAreUnique(), "two commands have the same id");

} // namespace

std::span<const Command> commandTable() { return table; }

const Command* findCommand(int id) {
    const auto row =
        std::find_if(table.begin(), table.end(), [id](const Command& c) { return c.id == id; });
    return row == table.end() ? nullptr : &*row;
}

} // namespace polyfab
