// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/asking.h"

#include "mesh/faces.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"

#include <cstdio>
#include <limits>

namespace polyfab {

bool hasFacesTo(const Mesh& mesh, const char* what) {
    const auto selected = selectedFaces(mesh);
    if (!(selected.begin() == selected.end())) return true;
    platform().message("", std::string("I have no selected faces to ") + what, Icon::none);
    return false;
}

bool isWithin(double number, double least, double most) {
    if (number >= least && number <= most) return true;
    char text[80];
    if (most == std::numeric_limits<double>::max()) {
        std::snprintf(text, sizeof text, "I need a number of at least %g", least);
    } else {
        std::snprintf(text, sizeof text, "I need a number from %g to %g", least, most);
    }
    platform().message("", text, Icon::exclamation);
    return false;
}

bool askWithin(const std::string& question, const std::string& defaultAnswer, double least,
               double most, double& number) {
    return askNumberOrCancel(question, defaultAnswer, number) && isWithin(number, least, most);
}

bool askCount(const std::string& question, const std::string& defaultAnswer, int most,
              int& number) {
    double answer = 0;
    if (!askWithin(question, defaultAnswer, 1, most, answer)) return false;
    number = static_cast<int>(answer);
    if (number == answer) return true;
    platform().message("", "I need a whole number", Icon::exclamation);
    return false;
}

void noteOfSelected(const Mesh& mesh, const std::string& did) {
    const auto selected = selectedFaces(mesh);
    note(selected.begin() == selected.end() ? "no face is selected" : did);
}

} // namespace polyfab
