// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/rendering.h"

#include "display/look.h"
#include "display/options.h"
#include "editor/editor_state.h"
#include "editor/menus.h"
#include "io/print_number.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"

#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>

namespace polyfab {
namespace {

std::string shortly(double number) {
    char text[numberRoom];
    return {text, printG6(text, number, 0)};
}

void setSmooth(bool smooth) {
    displayOptions.renderSmooth = smooth;
    stale.picture = true;
}

void refuse(const char* title, const char* why) {
    platform().message(title, why, Icon::exclamation);
}

} // namespace

template <bool left>
void toggleRendered() {
    bool& rendered = left ? displayOptions.renderLeft : displayOptions.renderRight;
    rendered = !rendered;
    displayOptions.renderChosen = true;
    stale.picture = true;
}
template void toggleRendered<true>();
template void toggleRendered<false>();

template <bool left>
bool paneIsRendered() {
    return isRendered(left);
}
template bool paneIsRendered<true>();
template bool paneIsRendered<false>();

void renderFlat() { setSmooth(false); }
void renderSmooth() { setSmooth(true); }
bool rendersFlat() { return !displayOptions.renderSmooth; }
bool rendersSmooth() { return displayOptions.renderSmooth; }

void toggleRenderedEdges() {
    displayOptions.renderedEdges = !displayOptions.renderedEdges;
    displayOptions.renderedEdgesChosen = true;
    stale.picture = true;
}
bool renderedEdgesAreShown() { return displayOptions.renderedEdges; }

void setLight() {
    double right = 0, above = 0;
    askText2("how many degrees from the right does the light come?",
             shortly(displayOptions.lightFromRight), "how many degrees from above?",
             shortly(displayOptions.lightFromAbove));
    if (prompts.cancelled) return;
    if (!parseOnlyNumber(prompts.answer[0], right) || !parseOnlyNumber(prompts.answer[1], above)
        || !(std::abs(right) <= 180 && std::abs(above) <= 90)) {
        return refuse("light", "I need angles from -180 to 180 and from -90 to 90");
    }
    displayOptions.lightFromRight = right;
    displayOptions.lightFromAbove = above;
    stale.picture = true;
}

std::string renderBackground() {
    char digits[16];
    const std::uint32_t color = displayOptions.renderBackground.value_or(look.background);
    std::snprintf(digits, sizeof digits, "%06X", color & 0xFFFFFFU);
    return digits;
}

void setRenderBackground() {
    const std::string shown = renderBackground();
    askText("background colour of rendered panes? (RRGGBB)", shown);
    const std::string answer = prompts.answer[0];
    if (prompts.cancelled || answer == shown) return; // it may go with the theme
    if (answer.size() != 6
        || answer.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
        return refuse("background colour", "I need six hexadecimal digits, such as FAFAF7");
    }
    displayOptions.renderBackground = static_cast<std::uint32_t>(std::stoul(answer, nullptr, 16));
    stale.picture = true;
}

void suitRendering(bool wasRead, bool altered) {
    constexpr std::int64_t mostWithEdges = 50'000, mostAsWires = 100'000;
    const std::int64_t faces = editorState.faces.live;
    DisplayOptions& options = displayOptions;
    const DisplayOptions before = options;
    if (!options.renderedEdgesChosen) options.renderedEdges = faces <= mostWithEdges;
    const bool solid = wasRead && faces > mostAsWires && !options.renderChosen;
    if (solid && !(options.renderLeft && options.renderRight)) {
        options.renderLeft = options.renderRight = true;
        note("rendered, as wires would be one solid patch: F5 and F6 change that");
    }
    const bool changed =
        options.renderLeft != before.renderLeft || options.renderedEdges != before.renderedEdges;
    if (changed) updateCheckMarks();
    // Of what was altered wires may show nothing, such as materials.
    if (!changed && !(altered && (options.renderLeft || options.renderRight))) return;
    stale.picture = true;
    platform().requestPaint();
}

} // namespace polyfab
