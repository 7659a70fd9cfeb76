// SPDX-License-Identifier: GPL-3.0-or-later
// Makes the sample meshes: make_samples DIRECTORY writes gear.obj and shell.obj there, the same
// bytes every time. It uses nothing of the editor, so that a fault of the editor's own writer
// cannot hide in the files that the tests read.
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <locale>
#include <numbers>
#include <string>

namespace {

constexpr double pi = std::numbers::pi;

using Vec = std::array<double, 3>;

Vec operator+(const Vec& a, const Vec& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vec operator-(const Vec& a, const Vec& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
Vec operator*(const Vec& a, double s) { return {a[0] * s, a[1] * s, a[2] * s}; }

Vec cross(const Vec& a, const Vec& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec unit(const Vec& a) { return a * (1 / std::hypot(a[0], a[1], a[2])); }

/// An OBJ file on its way; names are announced when they change.
class ObjFile {
  public:
    explicit ObjFile(const std::string& path) : out(path, std::ios::binary) {
        out.imbue(std::locale::classic());
    }
    void line(const std::string& text) { out << text << '\n'; }
    void numbers(const char* keyword, std::initializer_list<double> values) {
        out << keyword;
        // Adding zero turns a rounded -0 into 0.
        for (const double value : values) out << ' ' << std::round(value * 1e5) / 1e5 + 0.0;
        out << '\n';
    }
    void put(const char* keyword, const Vec& v) { numbers(keyword, {v[0], v[1], v[2]}); }
    void name(const std::string& newGroup, const std::string& newMaterial) {
        if (newGroup != group) line("g " + newGroup);
        if (newMaterial != material) line("usemtl " + newMaterial);
        group = newGroup;
        material = newMaterial;
    }
    bool finish() { return static_cast<bool>(out.flush()); }

  private:
    std::ofstream out;
    std::string group, material;
};

// The gear: one half of its section, from the bore out to the teeth, and the same mirrored, swept
// round. The outermost radius follows the teeth; windows are cut through the web.
constexpr int teeth = 16;
constexpr int stepsOfTooth = 6;
constexpr int columns = teeth * stepsOfTooth;
constexpr int windows = 6;

struct SectionPoint {
    double radius, z;
    const char* group; ///< of the faces from this point to the next
    const char* material;
};

constexpr SectionPoint halfSection[] = {
    {.20, .22, "hub", "brass"},     {.36, .22, "hub", "brass"},     {.42, .07, "web", "cast iron"},
    {.47, .07, "web", "cast iron"}, {.78, .07, "rim", "cast iron"}, {.84, .16, "rim", "cast iron"},
    {1.0, .16, "teeth", "steel"},   {0.0, .16, "teeth", "steel"}, // 0: the tooth's radius
};
constexpr int half = static_cast<int>(std::size(halfSection));
constexpr int section = 2 * half;
constexpr int windowFrom = 3; ///< the section's place whose faces the windows leave out

/// One tooth: share of the pitch and radius.
constexpr double tooth[stepsOfTooth][2] = {{.18, 1.05}, {.32, 1.18}, {.40, 1.24},
                                           {.60, 1.24}, {.68, 1.18}, {.82, 1.05}};

const SectionPoint& sectionAt(int i) { return halfSection[i < half ? i : section - 1 - i]; }

/// The gear stands a little turned, so that both panes show its face.
Vec gearPoint(int column, int i) {
    const double* const step = tooth[column % stepsOfTooth];
    const int place = column / stepsOfTooth;
    const double angle = 2 * pi * (place + step[0]) / teeth;
    const SectionPoint& at = sectionAt(i);
    const double radius = at.radius > 0 ? at.radius : step[1];
    const Vec p{radius * std::cos(angle), radius * std::sin(angle), i < half ? at.z : -at.z};
    const double tip = 0.3;
    const double yaw = 0.55;
    const double y = p[1] * std::cos(tip) - p[2] * std::sin(tip);
    const double z = p[1] * std::sin(tip) + p[2] * std::cos(tip);
    return {p[0] * std::cos(yaw) + z * std::sin(yaw), y, z * std::cos(yaw) - p[0] * std::sin(yaw)};
}

/// Whether the face at this column of the web is cut out.
bool inWindow(int column) {
    constexpr int pitch = columns / windows;
    const int place = (column + columns) % columns % pitch;
    return place >= 2 && place < pitch - 2;
}

void gearFace(ObjFile& file, std::initializer_list<std::array<int, 2>> corners) {
    std::string text = "f";
    for (const auto& [column, i] : corners) {
        text += " " + std::to_string(column % columns * section + i % section + 1);
    }
    file.line(text);
}

/// The walls of the windows join the front of the web to its back.
void windowWalls(ObjFile& file, int j) {
    constexpr int in = windowFrom;
    constexpr int out = windowFrom + 1;
    constexpr int backIn = section - 1 - in;
    constexpr int backOut = section - 1 - out;
    if (!inWindow(j)) return;
    gearFace(file, {{j + 1, in}, {j, in}, {j, backIn}, {j + 1, backIn}});
    gearFace(file, {{j, out}, {j + 1, out}, {j + 1, backOut}, {j, backOut}});
    if (!inWindow(j - 1)) gearFace(file, {{j, in}, {j, out}, {j, backOut}, {j, backIn}});
    if (!inWindow(j + 1)) {
        gearFace(file, {{j + 1, out}, {j + 1, in}, {j + 1, backIn}, {j + 1, backOut}});
    }
}

bool makeGear(const std::string& path) {
    ObjFile file(path);
    file.line("# A gear wheel of " + std::to_string(teeth) + " teeth, closed");
    for (int j = 0; j < columns; ++j) {
        for (int i = 0; i < section; ++i) file.put("v", gearPoint(j, i));
    }
    for (int i = 0; i < section; ++i) {
        const bool back = i >= half - 1;
        const int place = back ? std::max(section - 2 - i, 0) : i;
        const SectionPoint& at = halfSection[place];
        file.name(i == section - 1 ? "bore" : at.group, at.material);
        for (int j = 0; j < columns; ++j) {
            const bool web = place == windowFrom && i != section - 1;
            if (web && inWindow(j)) continue;
            gearFace(file, {{j, i}, {j, i + 1}, {j + 1, i + 1}, {j + 1, i}});
        }
    }
    file.name("windows", "cast iron");
    for (int j = 0; j < columns; ++j) windowWalls(file, j);
    return file.finish();
}

// The shell: a tube whose section grows by the same factor with every turn round the axis, closed
// at its tip and open at its mouth.
constexpr int rings = 100; ///< along the tube
constexpr int sides = 24;  ///< around it

double turnAt(double ring) { return 5.2 * ring / (rings - 1); }

/// A point of the tube; `ring` and `side` may lie between the whole ones.
Vec shellPoint(double ring, double side) {
    const double turn = turnAt(ring);
    const double angle = 2 * pi * (turn - 0.08);
    const double size = std::pow(1.78, turn);
    const double around = 2 * pi * side / sides;
    const double rib = 1 + 0.04 * std::cos(2 * pi * ring / 4) * turn / 5.2;
    const double radius = size * (0.64 + 0.60 * rib * std::cos(around));
    const double height = size * (-2.0 + 0.92 * rib * std::sin(around));
    return Vec{radius * std::cos(angle), height, radius * std::sin(angle)} * 0.1;
}

Vec shellNormal(double ring, double side) {
    const double h = 1e-4;
    const Vec along = shellPoint(ring + h, side) - shellPoint(ring - h, side);
    const Vec around = shellPoint(ring, side + h) - shellPoint(ring, side - h);
    return unit(cross(around, along));
}

/// "point/texture/normal" of a place in the tube's grid; the texture has a seam, the points none.
std::string shellCorner(int ring, int side) {
    const int point = ring * sides + side % sides + 1;
    return " " + std::to_string(point) + "/" + std::to_string(ring * (sides + 1) + side + 1) + "/"
           + std::to_string(point);
}

void shellTip(ObjFile& file) {
    const std::string apex = " " + std::to_string(rings * sides + 1) + "/"
                             + std::to_string(rings * (sides + 1) + 1) + "/"
                             + std::to_string(rings * sides + 1);
    file.name("tip", "umber");
    for (int s = 0; s < sides; ++s) {
        file.line("f" + apex + shellCorner(0, s + 1) + shellCorner(0, s));
    }
}

bool makeShell(const std::string& path) {
    ObjFile file(path);
    file.line("# A sea shell: a tube along a growing spiral, open at its mouth");
    const auto forEach = [](int count, const std::function<void(int, int)>& use) {
        for (int r = 0; r < rings; ++r) {
            for (int s = 0; s < count; ++s) use(r, s);
        }
    };
    Vec apex{0, 0, 0};
    for (int s = 0; s < sides; ++s) apex = apex + shellPoint(0, s) * (1.0 / sides);
    forEach(sides, [&](int r, int s) { file.put("v", shellPoint(r, s)); });
    file.put("v", apex);
    forEach(sides + 1, [&](int r, int s) {
        file.numbers("vt", {double(r) / (rings - 1), double(s) / sides});
    });
    file.numbers("vt", {0, 0.5});
    forEach(sides, [&](int r, int s) { file.put("vn", shellNormal(r, s)); });
    file.put("vn", unit(cross(shellNormal(0, 0), shellNormal(0, sides / 4.0)) * -1));

    shellTip(file);
    for (int r = 0; r + 1 < rings; ++r) {
        const char* const group = r + 4 >= rings ? "lip" : turnAt(r) < 4.2 ? "spire" : "body";
        for (int s = 0; s < sides; ++s) {
            file.name(group, s % 8 < 5 ? "ivory" : "umber");
            file.line("f" + shellCorner(r, s) + shellCorner(r, s + 1) + shellCorner(r + 1, s + 1)
                      + shellCorner(r + 1, s));
        }
    }
    return file.finish();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: make_samples DIRECTORY\n", stderr);
        return 2;
    }
    const std::string directory = argv[1];
    if (makeGear(directory + "/gear.obj") && makeShell(directory + "/shell.obj")) return 0;
    std::fputs("make_samples: the files cannot be written\n", stderr);
    return 1;
}
