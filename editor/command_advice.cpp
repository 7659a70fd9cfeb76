// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/command_advice.h"

#include "editor/command_table.h"
#include "editor/modes/modes.h"

#include <algorithm>
#include <iterator>

namespace polyfab {
namespace {

struct AdviceRow {
    int command;
    const char* advice;
};

constexpr AdviceRow rows[] = {
    {256, "reads a file in place of the mesh: OBJ, DXF and 3DS"},
    {296, "reads a file and adds it to the mesh"},
    {2001, "reads a file of another program, such as STL, PLY or glTF, in place of the mesh or in "
           "addition to it"},
    {2020, "reads or imports this file again"},
    {2021, "reads or imports this file again"},
    {2022, "reads or imports this file again"},
    {2023, "reads or imports this file again"},
    {2024, "reads or imports this file again"},
    {2025, "reads or imports this file again"},
    {2026, "reads or imports this file again"},
    {2027, "reads or imports this file again"},
    {2028, "reads or imports this file again"},
    {2029, "reads or imports this file again"},
    {2040, "saves to the file that the mesh came from, in its format and with all digits"},
    {262, "leaves the program, after a question when the mesh is not saved"},
    {2010, "takes the latest step back: a command, a drag, a visit to a list, a read"},
    {2011, "does the step again that was undone last"},
    {257, "writes the faces as 3DFACE entities with their layers"},
    {258, "writes groups as objects of triangles, with the materials and their colours"},
    {259, "writes points, texture coordinates, normals and faces, sorted by group and material"},
    {2002, "writes the format that the suffix names, such as .stl, .ply, .gltf or .fbx"},
    {260, "puts the numbers of points, faces and selected points, the current face and the "
          "current vertex into the title"},
    {261, "puts the selected faces into groups named after the colours of their materials"},
    {267, "tidies every face and drops deleted faces and all that no face uses"},
    {271, "the rotate modes turn about the screen's axes; otherwise about the object's own"},
    {297, "the rotate modes turn the view"},
    {298, "the rotate modes turn the selected faces"},
    {281, "shows the object upright again, from the front, and fits it in both panes"},
    {324, "restricts smoothing to one axis of the picture, or to none"},
    {371, "moves each point of the selected faces to the average of its neighbours; with Ctrl it "
          "only fills dents"},
    {372, "makes the selected surface thicker, step by step"},
    {398, "copies the selected faces and joins the copies to them by walls along the border"},
    {389, "copies the selected faces onto points of their own, and selects the copies"},
    {386, "drops the normals of the selected faces"},
    {388, "drops the texture coordinates of the selected faces"},
    {394, "welds selected faces where they cut or touch, and keeps all or, of closed ones, the "
          "union, the common inside or the difference"},
    {2038, "moves, resizes and turns the selected faces by numbers, all in one step"},
    {409, "mirrors the selected faces along an axis of the screen, about their middle"},
    {413, "changes the sign of one world coordinate of the selected faces"},
    {1055, "makes the world's y of the selected faces their z, and the other way about"},
    {1084, "turns the selected faces by a quarter about the world's y axis"},
    {415, "writes the names of the groups to a text file, one a line"},
    {1073, "writes the names of the materials to a text file, one a line"},
    {1024, "moves the selected faces, and the box with them, until its middle is at 0 along the "
           "axes you name"},
    {1051, "unites selected faces that lie on the same points into one"},
    {1057, "tells the volume within the selected faces, which must close"},
    {1058, "tells the extent of the box along the screen's axes"},
    {1082, "tells the world coordinates that the corners of the box lie between"},
    {1067, "unselects all faces that lie on the same points as another selected one"},
    {1070, "brings the world's origin into the middles of both panes"},
    {1085, "moves each point of the selected faces once, anywhere within a distance"},
    {1037, "counts points, faces, loose, bad and over-used edges, holes and parts, and tells area "
           "and volume"},
    {280, "turns faces over until all agree with the current face, which comes to run "
          "anticlockwise in the left pane"},
    {290, "selects every face"},
    {291, "selects no face"},
    {2031, "selects what is not selected, and nothing else"},
    {2032, "selects the faces around the selected ones, too"},
    {2033, "unselects the faces at the border of the selection"},
    {2034, "selects all faces that hang together with a selected one"},
    {2035,
     "selects the faces of the current face's material, and nothing else; with Shift adds them"},
    {2036, "selects the faces of the current face's group, and nothing else; with Shift adds them"},
    {2037, "selects the faces in the current face's plane, within an angle that is asked, and "
           "nothing else; with Shift adds them"},
    {292, "selects the faces that have all their corners in the box, too"},
    {293, "unselects the faces that have all their corners in the box"},
    {294, "selects all faces that are not wholly in the box, too"},
    {295, "unselects all faces that are not wholly in the box"},
    {2003, "puts the box around the selected faces"},
    {325, "unselects the faces that run clockwise in the left pane"},
    {326, "unselects the faces that run anticlockwise in the left pane"},
    {299, "deletes the selected faces"},
    {316, "deletes the faces that are not selected"},
    {268, "joins pairs of selected triangles that follow each other in the file into quads"},
    {1083, "looks for the best partner of each selected triangle and joins the two into a quad"},
    {274, "makes every selected face into triangles around its first corner"},
    {344, "makes selected faces of five or more sides into quads, with a triangle where the "
          "number is odd"},
    {360, "finds edges that two faces run the same way, and shows them"},
    {395, "cuts faces that bend inwards or are not flat into flat convex pieces, without new "
          "points"},
    {1056, "selects the faces that bend inwards, cross themselves or are not flat"},
    {284, "forgets which face is current"},
    {396, "forgets which edge is current"},
    {403, "splits the selected faces in the plane of the larger cut-off in x; an edge that is cut "
          "gets one point for all its faces"},
    {404, "splits the selected faces in the plane of the larger cut-off in y"},
    {405, "splits the selected faces in the plane of the larger cut-off in z"},
    {406, "splits the selected faces at both ends of a number of intervals between the cut-offs in "
          "x"},
    {407, "splits the selected faces at both ends of a number of intervals between the cut-offs in "
          "y"},
    {408, "splits the selected faces at both ends of a number of intervals between the cut-offs in "
          "z"},
    {1035, "fills the hole at the current edge or vertex with faces that turn the way those around "
           "it do"},
    {1052, "fills the holes between selected faces of at most a number of edges"},
    {397, "turns the selected faces over"},
    {1066, "unselects all faces of fewer than five corners"},
    {1088, "unselects all faces that have an area, so that those without one are left"},
    {390, "joins all points of the selected faces that are no further apart than a distance"},
    {1061, "moves close points on loose edges to the same place and keeps them separate"},
    {269, "joins close points on edges that only one face has: closes seams and leaves the rest "
          "alone"},
    {317, "shrinks short edges of the selected faces to their middles until none is left"},
    {329, "makes fewer of the selected faces, in nearly the same shape; borders, seams and creases "
          "stay"},
    {370, "gives surfaces that only meet at a point a point each"},
    {393, "gives the selected faces points of their own where they share some with unselected "
          "ones"},
    {1050, "tells the distance between the two settable points, along each axis and in a straight "
           "line"},
    {276, "lists the texture map areas, to select the faces of those that you pick"},
    {265, "draws the selected faces at their texture coordinates into a picture, to paint over"},
    {275, "numbers the pieces of the texture map: faces that share texture coordinates"},
    {285, "makes a group of each texture map area"},
    {264, "lists the groups, to select the faces of those that you pick; there they are renamed "
          "and reordered, too"},
    {322, "makes a new group of the selected faces"},
    {1025, "makes groups of one name into one"},
    {328, "lists the materials, to select the faces of those that you pick; there they are "
          "renamed, too"},
    {327, "gives the selected faces a new material"},
    {1026, "makes materials of one name into one"},
    {278, "lists the parts, to select the faces of those that you pick"},
    {279, "numbers the pieces of the mesh: faces that hang together through edges"},
    {287, "makes a group of each part"},
    {1072, "makes a material of each part"},
    {402, "gives the parts with a selected face points of their own"},
    {1065, "deletes the selected parts that are a single face"},
    {382, "shows a small square at every vertex, and lets points be picked that no face uses"},
    {346, "shows a filled square at each vertex of a selected face"},
    {347, "shows normals as short dotted lines: those of the corners or else of the face"},
    {270, "shows bad edges, as the last search found them, as wide red lines"},
    {266, "shows edges of unselected faces with fine dashes"},
    {323, "shows edges that only one face has with wide green dashes"},
    {354, "leaves out, in each pane, what only belongs to faces that face away"},
    {373, "shows the box with long brown dashes"},
    {1029, "marks the current face, edge and vertex in purple"},
    {1030, "shows the settable points as crosses, once one is set"},
    {1031, "shows the world's axes from the origin"},
    {1032, "shows a grid, whose step is named below"},
    {1033, "shows the numbers of faces and vertexes, counted from 1; zoom in when they are too "
           "many"},
    {2007, "shows the line below the panes: what the mouse does, and what is selected"},
    {2005, "draws lines with smooth edges, where there are not too many"},
    {2006, "shows what each pane looks at, and how the axes run"},
    {330, "shows the left pane as solid faces in the light, or as wires again"},
    {331, "shows the right pane as solid faces in the light, or as wires again"},
    {332, "gives each face one shade on rendered panes"},
    {333,
     "lets shades run over what is round on rendered panes, by normals or else up to 45 degrees"},
    {2004, "draws the edges of the faces that are seen on rendered panes"},
    {334, "shows the pictures of materials and texture maps on rendered panes instead of colours"},
    {2008, "blurs pictures where they are larger than their pixels on rendered panes"},
    {335, "says by two angles where the light comes from on rendered panes"},
    {355, "chooses the colour behind the faces on rendered panes"},
    {336, "chooses texture map 0: T in the list of groups gives it to groups"},
    {337, "chooses texture map 1: T in the list of groups gives it to groups"},
    {338, "chooses texture map 2: T in the list of groups gives it to groups"},
    {339, "chooses texture map 3: T in the list of groups gives it to groups"},
    {340, "chooses texture map 4: T in the list of groups gives it to groups"},
    {341, "chooses texture map 5: T in the list of groups gives it to groups"},
    {342, "chooses texture map 6: T in the list of groups gives it to groups"},
    {343, "chooses texture map 7: T in the list of groups gives it to groups"},
    {383, "reads a picture into the chosen texture map, for the faces of groups that have it"},
    {384, "writes the picture of the chosen texture map to a PNG file"},
    {1034, "shows the pictures behind the mesh"},
    {410, "puts a picture behind the left pane, from a file or the clipboard, to model after"},
    {345, "puts a picture behind the right pane, from a file or the clipboard, to model after"},
    {1069, "copies the rendered panes without marks, for other programs"},
    {282, "makes a rectangular block between the two settable points"},
    {392, "makes a sphere: centre, radius, faces around and from pole to pole"},
    {401, "makes a cylinder or, with one radius 0, a cone"},
    {414, "makes a cylinder with half spheres beyond its ends"},
    {412, "makes a ring: centre, where its axis points to, both radii"},
    {1036, "makes thin tetrahedra that fly from a place in a cone"},
    {1054, "makes a pipe along the edge of the current face"},
    {1038, "spins the current face about an axis, which may rise like a screw"},
    {1068, "makes one flat face with the edge of a spiral"},
    {283, "makes an alien rifle, from butt to muzzle, in groups and materials of its own"},
    {385, "shows the texture map number of each group before its name"},
    {2071, "shows all keys on one page"},
    {2070, "finds a command by its name, its number, its key or what it does, and runs it"},
    {2072, "shows the buttons above the panes; kept from run to run"},
    {2073, "fits the whole mesh in both panes and puts the box around it, as the Home key does"},
    {2074, "fits the selected faces in both panes, as the full stop does"},
    {263, "opens this manual at the chapter of the present mode or list"},
};

} // namespace

const char* adviceOf(int command) {
    const auto row = std::find_if(std::begin(rows), std::end(rows),
                                  [=](const AdviceRow& each) { return each.command == command; });
    if (row != std::end(rows)) return row->advice;
    if (const char* const help = modeHelpOf(command); *help != '\0') return help;
    return findCommand(command) != nullptr ? "this is not built yet" : "";
}

} // namespace polyfab
