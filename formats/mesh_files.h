// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that read, append and write mesh files: choice of the format by the name's suffix,
// checks before and after, the marks for "busy" and "nothing to save".
#pragma once

#include <string>

namespace polyfab {

/// Asks for a file and reads it in place of the mesh.
void readMeshFile();
/// Asks for a file and adds its contents to the mesh.
void appendMeshFile();
/// Reads this file in place of the mesh, as readMeshFile does after its dialog.
void readNamedMeshFile(const std::string& path);
/// Writes all of the mesh to the file that held it whole when it was read or written last, in that
/// file's format; an OBJ file then has every digit that its numbers need. Asks first when the file
/// holds what the mesh does not. Where there is no such file it asks for one, in the format of the
/// current file's name, or else OBJ.
void saveMeshFile();
/// Ask for a file of that suffix and write the mesh to it.
void writeDxfMeshFile();
void write3dsMeshFile();
/// Asks for a file and writes the mesh to it as OBJ; ".obj-" and ".obj#" choose the variants.
void writeObjMeshFile();

} // namespace polyfab
