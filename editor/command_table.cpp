// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/command_table.h"

#include "display/view.h"
#include "editor/commands/backgrounds.h"
#include "editor/commands/box.h"
#include "editor/commands/display.h"
#include "editor/commands/face.h"
#include "editor/commands/make.h"
#include "editor/commands/recent.h"
#include "editor/commands/rendering.h"
#include "editor/commands/selection.h"
#include "editor/commands/split_by_box.h"
#include "editor/commands/texture_maps.h"
#include "editor/commands/transform_by.h"
#include "editor/commands/view.h"
#include "editor/commands/volume.h"
#include "editor/help.h"
#include "editor/history/undo.h"
#include "editor/lists/name_list.h"
#include "editor/lists/subview.h"
#include "editor/menus.h"
#include "editor/modes/handling_modes.h"
#include "editor/modes/modes.h"
#include "editor/modes/navigation.h"
#include "editor/status_line.h"
#include "editor/tool_bar.h"
#include "formats/exchange/import_mesh.h"
#include "formats/mesh_files.h"
#include "generators/block.h"
#include "generators/maker.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "tools/bad_faces.h"
#include "tools/boolean/boolean.h"
#include "tools/color_groups.h"
#include "tools/delete_faces.h"
#include "tools/detriangularize.h"
#include "tools/distance.h"
#include "tools/draw_texture_map.h"
#include "tools/duplicate.h"
#include "tools/fill_holes.h"
#include "tools/find_areas.h"
#include "tools/find_parts.h"
#include "tools/mesh_facts.h"
#include "tools/name_commands.h"
#include "tools/names_from_numbers.h"
#include "tools/noise.h"
#include "tools/same_corners.h"
#include "tools/select_faces.h"
#include "tools/separate_glued.h"
#include "tools/smooth.h"
#include "tools/thicken.h"
#include "tools/thin/thin_out.h"
#include "tools/triangularize.h"
#include "tools/unweld.h"
#include "tools/weld_edges.h"
#include "tools/weld_points.h"
#include "workbench/state.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace polyfab {
namespace {

constexpr const char* file = "&file";
constexpr const char* edit = "&edit";
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

constexpr void (*later)() = nullptr;

using Show = DisplayOptions;

template <int command>
void goTo() {
    enterMode(command);
}

template <int number>
void openList() {
    openSubview(number);
}

template <void (*act)(Mesh&)>
void onMesh() {
    act(*OB);
}

template <const Maker& maker>
void make() {
    makeAndShow([](Mesh& mesh) { askAndMake(mesh, maker); });
}

/// Which of the two smoothings it is depends on the Ctrl key.
void smooth() {
    if (keyIsDown(key::ctrl)) return smoothDents(*OB);
    smoothView(*OB, workbench.smoothingAxis);
}

/// A command that works through large meshes for seconds, or leaves it to another program.
constexpr Command slow(Command row) {
    row.takesLong = true;
    return row;
}

/// One that looks at the Escape key meanwhile.
constexpr Command stoppable(Command row, Escape escape = Escape::stops) {
    row.escape = escape;
    return slow(row);
}

/// One that changes no more than what is selected.
constexpr Command selecting(Command row) {
    row.selects = true;
    return row;
}

/// One that changes only what is seen: no step of the history.
constexpr Command viewing(Command row) {
    row.views = true;
    return row;
}

constexpr Command fitting(Command row, const char* key) {
    row.bareKey = key;
    return viewing(row);
}

Shown shownStep(const char* label, const std::string& step) {
    return {step.empty() ? label : label + (" " + step), !step.empty()};
}

/// The handling modes have another use for the key.
Shown shownDelete() { return {"&delete selected faces", true, false, !isHandlingMode()}; }

Shown shownUndo() { return shownStep("&undo", undoLabel()); }
Shown shownRedo() { return shownStep("&redo", redoLabel()); }

template <int number>
constexpr Command recentRow(const char* label) {
    constexpr auto open = [] { openRecentFile(number); };
    constexpr auto shown = [] { return shownRecentFile(number); };
    return stoppable({commandid::firstRecentFile + number, file, label, open, nullptr, "", shown},
                     Escape::stopsReading);
}

template <int number>
constexpr Command textureMapRow(const char* label) {
    constexpr int first = 336;
    constexpr auto choose = [] { chooseTextureMap(number); };
    constexpr auto isChosen = [] { return textureMapIsChosen(number); };
    constexpr auto shown = [] { return shownTextureMap(number); };
    return {first + number, rendering, label, choose, isChosen, "", shown};
}

constexpr auto table = std::to_array<Command>({
    stoppable({commandid::readMesh, file, "&read mesh file", readMeshFile, nullptr, "Ctrl+O"},
              Escape::stopsReading),
    stoppable({296, file, "&append mesh file", appendMeshFile, nullptr, "Ctrl+Shift+O"},
              Escape::stopsReading),
    stoppable({commandid::importMesh, file, "&import other mesh file", importOtherMesh, nullptr,
               "Ctrl+Shift+I"}),
    recentRow<0>("recent file &1"),
    recentRow<1>("recent file &2"),
    recentRow<2>("recent file &3"),
    recentRow<3>("recent file &4"),
    recentRow<4>("recent file &5"),
    recentRow<5>("recent file &6"),
    recentRow<6>("recent file &7"),
    recentRow<7>("recent file &8"),
    recentRow<8>("recent file &9"),
    recentRow<9>("recent file 1&0"),
    slow({commandid::save, file, "&save", saveMeshFile, nullptr, "Ctrl+S"}),
    {exitCommand, file, "e&xit", [] { platform().requestClose(); }, nullptr, "Ctrl+Q"},

    {undoCommand, edit, "&undo", undo, nullptr, "Ctrl+Z", shownUndo},
    {redoCommand, edit, "&redo", redo, nullptr, "Ctrl+Shift+Z; Ctrl+Y", shownRedo},

    slow({commandid::writeDxf, write, "&DXF mesh file", writeDxfMeshFile}),
    slow({commandid::write3ds, write, "&3DS mesh file", write3dsMeshFile}),
    slow({commandid::writeObj, write, "&OBJ mesh file", writeObjMeshFile, nullptr, "Ctrl+Shift+S"}),
    stoppable({commandid::exportMesh, write, "e&xport other mesh file", exportOtherMesh, nullptr,
               "Ctrl+E"}),

    {358, mode, "go to defa&ult mode", goTo<358>, nullptr, "D"},
    {348, mode, "go to &edge-handling mode", goTo<348>, nullptr, "E"},
    {349, mode, "go to &face-handling mode", goTo<349>, nullptr, "F"},
    {350, mode, "go to &group-handling mode", goTo<350>, nullptr, "G"},
    {351, mode, "go to &move-an-object mode", goTo<351>, nullptr, "M"},
    {352, mode, "go to move-the-&display mode", goTo<352>},
    {353, mode, "go to &vertex-handling mode", goTo<353>, nullptr, "P"},
    {357, mode, "go to set-&left-cutoff mode", goTo<357>},
    {359, mode, "go to resize-an-o&bject mode", goTo<359>, nullptr, "S"},
    {selectByRectangle, mode, "select by rectangle: &4", goTo<selectByRectangle>, nullptr, "B"},
    {361, mode, "go to &texture-map-coordinate-handling mode", later},
    {362, mode, "go to set-&right-cutoff mode", goTo<362>},
    {363, mode, "go to re&size-the-display mode", goTo<363>},
    {364, mode, "go to rotate-around-x mode: &x", goTo<364>, nullptr, "X"},
    {365, mode, "go to rescale-in-x mode: &i", goTo<365>},
    {366, mode, "go to rotate-around-y mode: &y", goTo<366>, nullptr, "Y"},
    {367, mode, "go to rescale-in-y mode: &j", goTo<367>},
    {368, mode, "go to rotate-around-z mode: &z", goTo<368>, nullptr, "Z"},
    {369, mode, "go to rescale-in-z mode: &k", goTo<369>},
    {1062, mode, "go to twist-around-x mode: &1", goTo<1062>},
    {1063, mode, "go to twist-around-y mode: &2", goTo<1063>},
    {1064, mode, "go to twist-around-z mode: &3", goTo<1064>},
    {1040, mode, "go to move-by-gra&phs mode", later},
    {1049, mode, "go to s&cale-by-graphs mode", later},

    {260, tools, "&info", showInfo},
    {261, tools, "color&sep", onMesh<groupByColor>},
    {267, tools, "collect &garbage", collectGarbageNow},
    {271, tools, "add new rotation &after existing rotations", toggleRotationAfter,
     rotationComesAfter},
    {297, tools, "rotate &view", letRotationTurnView, rotationTurnsView},
    viewing({281, tools, "reset a&ttitude", showUpright, nullptr, "Ctrl+R"}),
    {298, tools, "rotate &objects", letRotationTurnObjects, rotationTurnsObjects},
    {324, tools, "contro&l smoothing", askSmoothingAxis},
    slow({371, tools, "s&moothing", smooth}),
    slow({372, tools, "move all vertexes out by a set &distance", onMesh<thicken>}),
    slow({398, tools, "duplicate selected faces, &join edges", onMesh<duplicateSelectedJoined>}),
    slow({389, tools, "du&plicate selected faces", onMesh<duplicateSelected>, nullptr, "Ctrl+D"}),
    {386, tools, "remove &normals (= `vn' lines of .OBJ files) from selected faces", removeNormals},
    {388, tools, "remove te&xture map info (= `vt' lines of .OBJ files) from selected faces",
     removeTexCoords},
    stoppable({394, tools, "&boolean: weld intersecting selected faces", onMesh<weldIntersecting>}),
    {2038, tools, "move, scale, rotate by: &v", transformBy, nullptr, "Ctrl+T"},
    {409, tools, "mi&rror-image in x or y or z coordinates as on screen", mirrorOnScreen},
    {413, tools, "chang&e sign of absolute x or y or z", changeSign},
    {1055, tools, "s&wop y and z absolute axes", swopYAndZ},
    {1084, tools, "rotate 90° degrees clockwise about the absolute y-axis", rotateAboutY},
    {415, tools, "output group names to text &file",
     [] { writeGroupNames(*OB, workbench.fileName); }},
    {1073, tools, "output material names to text file",
     [] { writeMaterialNames(*OB, workbench.fileName); }},
    {1024, tools, "move selected faces to &center the box on absolute x or y or z = 0", centerBox},
    slow({1051, tools, "if 2 selected faces have all the same corners, remove one: &7",
          onMesh<removeFacesOnSamePoints>}),
    {1057, tools, "find absolute volume bounded by selected faces: &8", tellVolume},
    {1058, tools, "say absolute size of box: &9", tellBoxSize},
    {1082, tools, "say absolute range of box in x and y and z", tellBoxRange},
    slow({1067, tools, "unselect all selected duplicated faces: &0",
          onMesh<unselectFacesOnSamePoints>}),
    viewing({1070, tools, "display with absolute (0,0,0) in middles of panes: &z", centreOrigin}),
    {1085, tools, "noise", onMesh<addNoise>},
    slow({1037, tools, "special", onMesh<tellFacts>}),

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

    slow({280, facesMenu, "make all faces show &anticlockwise the same way", orientFaces}),
    selecting({290, facesMenu, "&select all faces", selectAllFaces, nullptr, "Ctrl+A"}),
    selecting({291, facesMenu, "&unselect all faces", unselectAllFaces, nullptr, "Ctrl+Shift+A"}),
    selecting(
        {2031, facesMenu, "in&vert the selection", onMesh<invertSelection>, nullptr, "Ctrl+I"}),
    selecting({2032, facesMenu, "grow the selection by one ring: &+", onMesh<growSelection>,
               nullptr, "Ctrl++; Ctrl+="}),
    selecting({2033, facesMenu, "shrink the selection by one ring: &-", onMesh<shrinkSelection>,
               nullptr, "Ctrl+-"}),
    selecting({2034, facesMenu, "select all faces connected to the selected ones: &2",
               onMesh<selectConnected>, nullptr, "Ctrl+L"}),
    selecting({2035, facesMenu, "select faces of the current face's material: &m",
               onMesh<selectSameMaterial>}),
    selecting(
        {2036, facesMenu, "select faces of the current face's group: &u", onMesh<selectSameGroup>}),
    selecting(
        {2037, facesMenu, "select faces in the current face's plane: &e", onMesh<selectSamePlane>}),
    selecting({292, facesMenu, "select faces in &box", selectInBox}),
    selecting({293, facesMenu, "unselect faces in box : &9", unselectInBox}),
    selecting({294, facesMenu, "select faces out o&f box", selectOutOfBox}),
    selecting({295, facesMenu, "unselect faces ou&t of box", unselectOutOfBox}),
    {2003, facesMenu, "fit the box to the selected faces: &0", fitBoxToSelected, nullptr, "Ctrl+B"},
    selecting({325, facesMenu, "unselect faces &clockwise on left pane", unselectClockwise}),
    selecting(
        {326, facesMenu, "unselect faces ant&iclockwise on left pane", unselectAnticlockwise}),
    {299, facesMenu, "&delete selected faces", onMesh<deleteSelectedFaces>, nullptr, "Del",
     shownDelete},
    {316, facesMenu, "de&lete unselected faces", onMesh<deleteUnselectedFaces>},
    slow({268, facesMenu, "det&riangularize (quickly)", [] { detriquick(*OB, false); }}),
    slow({1083, facesMenu, "detriangularize (thoroughly)", [] { detrithorough(*OB, false); }}),
    slow({274, facesMenu, "trian&gularize", onMesh<triangularize>}),
    slow({344, facesMenu, "break up faces with &5 or more sides", onMesh<breakupfaces>}),
    slow({360, facesMenu, "find and start showing bad &edges", findBadEdges}),
    stoppable({395, facesMenu, "s&plit up re-entrant or badly out-of-plane faces",
               onMesh<splitBadFaces>}),
    slow(
        {1056, facesMenu, "select re-entrant or badly out-of-plane faces", onMesh<selectBadFaces>}),
    {284, facesMenu, "set to `n&o current face'", setNoCurrentFace},
    {396, facesMenu, "set to `no &curren&t edge'", setNoCurrentEdge},
    stoppable({403, facesMenu, "split selected faces along the box's maximum &x",
               [] { splitAtBoxMaximum(0); }}),
    stoppable({404, facesMenu, "split selected faces along the box's maximum &y",
               [] { splitAtBoxMaximum(1); }}),
    stoppable({405, facesMenu, "split selected faces along the box's maximum z: &1",
               [] { splitAtBoxMaximum(2); }}),
    stoppable({406, facesMenu, "split selected faces at intervals in the box's x range: &2",
               [] { splitAtBoxIntervals(0); }}),
    stoppable({407, facesMenu, "split selected faces at intervals in the box's y range: &3",
               [] { splitAtBoxIntervals(1); }}),
    stoppable({408, facesMenu, "split selected faces at intervals in the box's z range: &7",
               [] { splitAtBoxIntervals(2); }}),
    stoppable({1035, facesMenu, "insert faces to fill a &hole", onMesh<fillHole>}),
    stoppable({1052, facesMenu, "insert faces to fill all holes: &8", onMesh<fillHoles>}),
    {397, facesMenu, "&4: reverse the corner order in all selected faces", reverseSelectedFaces},
    selecting({1066, facesMenu, "&6: unselect all selected faces with less than 5 corners",
               unselectSmallFaces}),
    selecting({1088, facesMenu, "unselect all selected faces with non-&zero area",
               unselectFacesWithArea}),

    stoppable({390, vertexes, "weld &all very close points", [] { weldclose(*OB, true); }, nullptr,
               "Ctrl+J"}),
    stoppable({1061, vertexes, "&bring all very close points together, don't weld them",
               [] { bringclose(*OB, false); }}),
    stoppable({269, vertexes, "&weld all very close points which are on loose edges",
               [] { weldclose(*OB, false); }}),
    stoppable(
        {317, vertexes, "w&eld all very close points, by edges and repeat", onMesh<weldedges>}),
    stoppable({329, vertexes, "&thin out the faces", onMesh<thinOut>}),
    slow({370, vertexes, "separate surfaces that are &glued at one point",
          onMesh<separateGluedSurfaces>}),
    slow({393, vertexes, "&unweld selected from unselected faces", onMesh<unweldSelected>}),
    {1050, vertexes, "find &far it is between the two settable points", tellDistance},

    {277, texture, "s&tart editing texture map coords", later},
    {528, texture, "new texture map: &planar", later},
    {515, texture, "new texture map: &cylinder", later},
    {533, texture, "new texture map: cu&bic", later},
    {517, texture, "new texture map: cylinder with &ends", later},
    {276, texture, "&select texture map areas by menu", openList<subview::textureMapAreas>},
    {380, texture, "go to select-texture-map-areas-by-c&licking mode", goTo<380>},
    slow({265, texture, "make texture map of selected faces on &file",
          [] { drawTextureMap(*OB, workbench.fileName); }}),
    {273, texture, "&weld equal texture map coords of selected faces", later},
    {288, texture, "&unweld texture map coords of selected from unselected faces", later},
    {272, texture, "reverse texture map u of selected faces: &1", later},
    {286, texture, "reverse texture map v of selected faces: &2", later},
    {320, texture, "swop texture map u and v of selected faces: &3", later},
    {321, texture, "bring texture map coords into the range 0 to 1: &4", later},
    {387, texture, "say the range of texture map coords: &5", later},
    {391, texture, "set the range of texture map coords: &6", later},
    slow({275, texture, "find texture map &areas", onMesh<findareas>}),
    slow({285, texture, "make texture map areas into &groups", onMesh<makeAreasIntoGroups>}),

    {264, groups, "&select groups by menu", openList<subview::groups>, nullptr, "Ctrl+G"},
    {378, groups, "go to select-groups-by-&clicking mode", goTo<378>},
    {322, groups, "put selected &faces into new group", onMesh<putSelectedIntoNewGroup>},
    {1025, groups, "&amalgamate groups with same name", onMesh<amalgamateGroups>},

    {328, materials, "&select materials by menu", openList<subview::materials>, nullptr, "Ctrl+M"},
    {379, materials, "go to select-materials-by-&clicking mode", goTo<379>},
    {327, materials, "put selected &faces into new material", onMesh<putSelectedIntoNewMaterial>},
    {1026, materials, "a&malgamate materials with same name", onMesh<amalgamateMaterials>},

    {278, parts, "&select parts by menu", openList<subview::parts>},
    {381, parts, "go to select-parts-by-&clicking mode", goTo<381>},
    slow({279, parts, "&find parts", onMesh<askAndFindParts>}),
    {287, parts, "make parts into &groups", onMesh<makePartsIntoGroups>},
    {1072, parts, "make parts into &materials", onMesh<makePartsIntoMaterials>},
    stoppable({402, parts, "&unweld selected parts", onMesh<unweldSelectedParts>}),
    {1065, parts, "delete all selected parts that contain only &1 face",
     onMesh<deletePartsOfOneFace>},

    {382, display, "show &vertexes", flip<&Show::vertexes>, isOn<&Show::vertexes>},
    {346, display, "show &selected vertexes", flip<&Show::selectedVertexes>,
     isOn<&Show::selectedVertexes>},
    {347, display, "show &normals", flip<&Show::normals>, isOn<&Show::normals>},
    {270, display, "show bad &edges", flip<&Show::badEdges>, isOn<&Show::badEdges>},
    {266, display, "show unselected faces &grey", flip<&Show::unselectedGrey>,
     isOn<&Show::unselectedGrey>},
    {323, display, "show &loose edges", flip<&Show::looseEdges>, isOn<&Show::looseEdges>},
    {354, display, "&hide faces that face away", flip<&Show::hideFacingAway>,
     isOn<&Show::hideFacingAway>, "Ctrl+H"},
    {373, display, "show the &box", flip<&Show::box>, isOn<&Show::box>},
    {1029, display, "show the &current face, edge and vertex", flip<&Show::current>,
     isOn<&Show::current>},
    {1030, display, "show the settable &points", flip<&Show::settable>, isOn<&Show::settable>},
    {1031, display, "show the &axes", flip<&Show::axes>, isOn<&Show::axes>},
    {1032, display, "show a g&rid", flip<&Show::grid>, isOn<&Show::grid>},
    {1033, display, "show &face and vertex numbers", flip<&Show::numbers>, isOn<&Show::numbers>},
    {2007, display, "show the stat&us line", toggleStatusLine, statusLineIsShown},
    {2072, display, "show the t&ool bar", toggleToolBar, toolBarIsShown},
    {2005, display, "s&mooth lines", flip<&Show::smoothLines>, isOn<&Show::smoothLines>},
    {2006, display, "show the names of the panes: &t", flip<&Show::paneNames>,
     isOn<&Show::paneNames>},
    fitting(
        {fitCommand, display, "fit everything in both panes: &0", [] { navigateByKey(key::home); }},
        "Home"),
    fitting({fitSelectedCommand, display, "fit the selected faces: &1",
             [] { navigateByKey(key::fullStop); }},
            "full stop"),
    {1034, display, "show the pane backgroun&ds", flip<&Show::backgrounds>,
     isOn<&Show::backgrounds>},

    {330, rendering, "&render the left pane", toggleRendered<true>, paneIsRendered<true>, "F5"},
    {331, rendering, "render the r&ight pane", toggleRendered<false>, paneIsRendered<false>, "F6"},
    {332, rendering, "render &flat", renderFlat, rendersFlat},
    {333, rendering, "render &smooth", renderSmooth, rendersSmooth},
    {2004, rendering, "show the &edges on rendered panes", toggleRenderedEdges,
     renderedEdgesAreShown},
    {334, rendering, "render with &texture maps", flip<&Show::renderTextures>,
     isOn<&Show::renderTextures>},
    {2008, rendering, "&mix the texels of texture maps", flip<&Show::mixTexels>,
     isOn<&Show::mixTexels>},
    {335, rendering, "set the &light", setLight},
    {355, rendering, "set the background &colour", setRenderBackground},
    {410, rendering, "read &background image of left pane", readBackground<true>},
    {345, rendering, "read background image of right &pane", readBackground<false>},
    textureMapRow<0>("select texture map &0"),
    textureMapRow<1>("select texture map &1"),
    textureMapRow<2>("select texture map &2"),
    textureMapRow<3>("select texture map &3"),
    textureMapRow<4>("select texture map &4"),
    textureMapRow<5>("select texture map &5"),
    textureMapRow<6>("select texture map &6"),
    textureMapRow<7>("select texture map &7"),
    {383, rendering, "read te&xture map image", readTextureMap},
    slow({384, rendering, "&write texture map image", writeTextureMap}),
    {1069, rendering, "put the rendered picture on the clipb&oard", copyRendered},

    {282, makeObject, "&cube", [] { makeAndShow(askAndMakeBlock); }},
    {392, makeObject, "&sphere", make<sphereMaker>},
    {401, makeObject, "c&ylinder with flat ends", make<cylinderMaker>},
    {414, makeObject, "cylinder with rounded &ends", make<roundedCylinderMaker>},
    {412, makeObject, "&torus", make<torusMaker>},
    {1036, makeObject, "s&hower of sparks", make<sparksMaker>},
    {1054, makeObject, "&pipe along the current face's edge", make<pipeMaker>},
    {1038, makeObject, "solid of revolution by spi&nning the current face", make<spinMaker>},
    {1068, makeObject, "face with spira&l edge", make<spiralMaker>},
    {283, makeObject, "alien &rifle", make<rifleMaker>},

    {commandid::textureNumbers, listMenu, "&show texture map numbers", toggleTextureNumbers,
     showsTextureNumbers},

    {commandid::help, helpMenu, "&help", openHelpHere, nullptr, "F1"},
    {2071, helpMenu, "all &keys", showKeys, nullptr, "Shift+F1"},
    {2070, helpMenu, "&search the commands", [] { platform().searchCommands(); }, nullptr,
     "Ctrl+F"},
});

/// Whether one of the shortcuts in `a` is one of those in `b`.
constexpr bool shareKey(std::string_view a, std::string_view b) {
    const std::size_t end = a.find("; ");
    if (end < a.size()) return shareKey(a.substr(0, end), b) || shareKey(a.substr(end + 2), b);
    if (b.find("; ") < b.size()) return shareKey(b, a);
    return a == b;
}

constexpr bool idsAndKeysAreUnique() {
    for (std::size_t i = 0; i < table.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (table[i].id == table[j].id) return false;
            const bool both = *table[i].key != '\0' && *table[j].key != '\0';
            if (both && shareKey(table[i].key, table[j].key)) return false;
        }
    }
    return true;
}

static_assert(idsAndKeysAreUnique(), "two commands have the same id or shortcut");

} // namespace

std::span<const Command> commandTable() { return table; }

const Command* findCommand(int id) {
    const auto row =
        std::find_if(table.begin(), table.end(), [id](const Command& c) { return c.id == id; });
    return row == table.end() ? nullptr : &*row;
}

std::string plainLabel(std::string text) {
    const std::size_t mark = text.find('&');
    if (mark != std::string::npos && mark >= 2 && mark + 2 == text.size()
        && text.compare(mark - 2, 2, ": ") == 0) {
        text.resize(mark - 2);
        if (text.ends_with(' ')) text.pop_back();
    }
    if (mark == 0 && text.compare(2, 2, ": ") == 0) text.erase(0, 4);
    std::erase(text, '&');
    return text;
}

void runCommand(int id) {
    const Command* const command = findCommand(id);
    if (command == nullptr || command->handler == nullptr) return;
    command->handler();
    updateCheckMarks();
}

} // namespace polyfab
