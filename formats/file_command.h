// SPDX-License-Identifier: GPL-3.0-or-later
// What all commands that read or write mesh files do alike: messages, checks, marks, the reset for
// a new mesh.
#pragma once

#include <cstdint>
#include <string>

namespace polyfab {

class PieceReader;
struct Mesh;

/// A message about a file: its path is the text, what happened the title.
void complain(const std::string& what, const std::string& path);

/// Shows the fault that the integrity check finds under this title. True when there is none.
[[nodiscard]] bool meshIsSound(const Mesh& mesh, const char* title);

/// Makes this the current file, whose name the next file dialog offers. It is not yet where saving
/// goes to.
void setFileName(const std::string& path);

/// Tells of a file that is read. To be made before the reading.
class ReadNote {
  public:
    explicit ReadNote(const Mesh& changed);
    /// It has been read, and replaced the mesh or was added to it. The time is told where it
    /// passes: in headless runs it stands still.
    void tell(const std::string& path, bool added) const;

  private:
    const Mesh& mesh;
    std::int64_t points, faces; ///< before
    double started;
};

/// Tells of a file that was written with so many faces.
void noteSaved(const std::string& path, std::int64_t faces);

/// The live faces, or those of them that are selected.
[[nodiscard]] std::int64_t countFaces(const Mesh& mesh, bool onlySelected);

/// No current elements; the view fitted anew, upright if the mesh was replaced, and the box around
/// the mesh.
void resetForNewMesh(Mesh& mesh, bool replaced);

/// Which part of reading a file a pass over it is.
enum class Pass { only, counting, reading };

/// To be called for each piece of a file that is read: tells how far it is. False when the user
/// wants it to stop.
[[nodiscard]] bool readsOn(const PieceReader& file, Pass pass);

/// Holds the busy mark, and a busy notice where there is a text for one, until `end` or for as long
/// as it lives.
class Busy {
  public:
    explicit Busy(const char* text);
    ~Busy() { end(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

    void end();

  private:
    bool notice;
};

} // namespace polyfab
