// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/menu_layout.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace polyfab {
namespace {

struct Kind {
    std::array<int, 10> commands; ///< as many as are not 0
    const char* subMenu = nullptr;
    bool oneHolds = false;
};

constexpr const char* rescale = "resc&ale along one axis";
constexpr const char* twist = "t&wist";
constexpr const char* rotation = "vie&w and rotation";
constexpr const char* byKind = "unselect faces by &kind";
constexpr const char* alongBox = "s&plit faces along the box";

/// Menu by menu, from top to bottom.
constexpr auto kinds = std::to_array<Kind>({
    {{256, 296, 2001, 2040}},
    {{2020, 2021, 2022, 2023, 2024, 2025, 2026, 2027, 2028, 2029}},
    {{262}},

    {{257, 258, 259}},
    {{2002}},

    {{358, 2030}},
    {{349, 348, 353, 350, 361}},
    {{351, 359, 364, 366, 368}},
    {{365, 367, 369}, rescale},
    {{1062, 1063, 1064}, twist},
    {{1040, 1049}},
    {{352, 363}},
    {{357, 362}},

    {{260, 267, 261}},
    {{2038, 389, 398}},
    {{371, 324, 372, 394}},
    {{409, 413, 1055, 1084, 1024}, "move, mi&rror and turn"},
    {{297, 298}, rotation, true},
    {{271}, rotation},
    {{281, 1070}, rotation},
    {{1057, 1058, 1082}, "m&easure"},
    {{1051, 1067}, "double &faces"},
    {{386, 388}, "rem&ove from the selected faces"},
    {{415, 1073}, "&names to a text file"},
    {{1085, 1037}},

    {{1048, 1041}},
    {{1042, 1043, 1044, 1045, 1046, 1047}},
    {{1075, 1076, 1077}},

    {{290, 291, 2031, 2032, 2033, 2034}},
    {{2036, 2035, 2037}, "select faces like the cu&rrent one"},
    {{292, 294, 293, 295}, "faces in the &box"},
    {{2003}, "faces in the &box"},
    {{325, 326}, byKind},
    {{1066, 1088}, byKind},
    {{1056}, byKind},
    {{299, 316}},
    {{280, 397, 360}},
    {{284, 396}},
    {{268, 1083, 274, 344, 395}, "tr&iangles and quads"},
    {{403, 404, 405}, alongBox},
    {{406, 407, 408}, alongBox},
    {{1035, 1052}, "fill &holes"},

    {{390, 269, 1061, 317}},
    {{370, 393}},
    {{329}},
    {{1050}},

    {{277, 265}},
    {{528, 515, 533, 517}},
    {{276, 380}},
    {{275, 285}},
    {{273, 288}},
    {{272, 286, 320, 321, 387, 391}},

    {{264, 378}},
    {{322, 1025}},

    {{328, 379}},
    {{327, 1026}},

    {{278, 381}},
    {{279, 287, 1072}},
    {{402, 1065}},

    {{2073, 2074}},
    {{382, 346, 347, 1033}},
    {{323, 270, 266, 354}},
    {{373, 1029, 1030, 1031, 1032}},
    {{2005, 2006, 2007, 2072, 1034}},

    {{330, 331}},
    {{332, 333}, nullptr, true},
    {{2004, 334, 2008}},
    {{335, 355, 410, 345}},
    {{336, 337, 338, 339, 340, 341, 342, 343}, "texture m&aps", true},
    {{383, 384, 1069}},

    {{282}},
    {{392, 401, 414, 412}},
    {{1054, 1038, 1068}},
    {{1036, 283}},

    {{263, 2071}},
    {{2070}},
});

constexpr bool eachStandsOnce() {
    for (std::size_t i = 0; i < kinds.size() * 10; ++i) {
        const int command = kinds[i / 10].commands[i % 10];
        for (std::size_t k = 0; k < i && command != 0; ++k) {
            if (kinds[k / 10].commands[k % 10] == command) return false;
        }
    }
    return true;
}

static_assert(eachStandsOnce(), "a command stands at two places of the menus");

const Kind& kindOf(int number) { return kinds[static_cast<std::size_t>(number)]; }

} // namespace

MenuPlace menuPlace(int command) {
    for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
        const auto& commands = kinds[kind].commands;
        const auto found = std::find(commands.begin(), commands.end(), command);
        if (found == commands.end()) continue;
        return {static_cast<int>(kind), static_cast<int>(found - commands.begin())};
    }
    return {};
}

const char* subMenuOf(int kind) { return kind < 0 ? nullptr : kindOf(kind).subMenu; }

bool excludeEachOther(int kind) { return kind >= 0 && kindOf(kind).oneHolds; }

} // namespace polyfab
