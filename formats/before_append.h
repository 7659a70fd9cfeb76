// SPDX-License-Identifier: GPL-3.0-or-later
// The way back from an append.
#pragma once

#include "mesh/mesh.h"

#include <cstddef>
#include <iterator>

namespace polyfab {

/// Takes what was appended since it was made off the mesh again.
class BeforeAppend {
  public:
    explicit BeforeAppend(const Mesh& mesh)
        : counts{mesh.np, mesh.nq, mesh.nf, mesh.nt, mesh.nd, mesh.ng, mesh.nmat},
          group(mesh.curgroup), material(mesh.curmat) {}

    void restore(Mesh& mesh) const {
        int* const fields[] = {&mesh.np, &mesh.nq, &mesh.nf,  &mesh.nt,
                               &mesh.nd, &mesh.ng, &mesh.nmat};
        for (std::size_t i = 0; i < std::size(fields); ++i) *fields[i] = counts[i];
        mesh.curgroup = group;
        mesh.curmat = material;
        mesh.settleLostArrays();
    }

  private:
    int counts[7];
    std::int16_t group, material;
};

} // namespace polyfab
