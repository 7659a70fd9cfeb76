// SPDX-License-Identifier: GPL-3.0-or-later
// FreeType makes grey pictures of the font's characters, which are laid one behind the other
// without kerning.
#include "platform/batch/text.h"

#include "platform/batch/destroy.h"
#include "platform/batch/font_file.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <bit>
#include <map>
#include <memory>
#include <string_view>

namespace polyfab {
namespace {

constexpr char32_t replacement = 0xFFFD;

using Library = std::unique_ptr<FT_LibraryRec_, Destroy<FT_Done_FreeType>>;
using Face = std::unique_ptr<FT_FaceRec_, Destroy<FT_Done_Face>>;

/// The fonts that have been opened, by weight; null where there is none.
FT_Face openFont(int weight) {
    static const Library library = [] {
        FT_Library made = nullptr;
        FT_Init_FreeType(&made);
        return Library(made);
    }();
    static std::map<int, Face> faces; // declared later, so it goes before the library does
    const auto [entry, isNew] = faces.try_emplace(weight);
    if (isNew && library) {
        const FontFile file = findFontFile(weight);
        FT_Face face = nullptr;
        FT_New_Face(library.get(), file.path.c_str(), file.index, &face);
        entry->second.reset(face);
    }
    return entry->second.get();
}

constexpr int pixels(FT_Pos length) { return static_cast<int>((length + 32) >> 6); }

/// Of the font's units in its present size. Its own size record rounds up for hinted characters.
int scaled(FT_Face face, FT_Short units) {
    return pixels(FT_MulFix(units, face->size->metrics.y_scale));
}

/// The font in the largest size whose lines are not higher than wanted, or null.
FT_Face sizedFont(const Font& font) {
    constexpr int largest = 4096;
    const FT_Face face = font.height < 1 ? nullptr : openFont(font.weight);
    if (face == nullptr) return nullptr;
    for (int size = std::min(font.height, largest); size > 0; --size) {
        if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size)) != 0) return nullptr;
        const int lineHeight = scaled(face, face->ascender) - scaled(face, face->descender);
        if (lineHeight <= font.height) return face;
    }
    return face; // a single pixel is the smallest
}

/// Takes the first character off; a byte that begins none is one of its own.
char32_t takeCharacter(std::string_view& text) {
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000}; // by the number of bytes
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    // The ones that the first byte begins with count the bytes, but none means one.
    const auto ones = static_cast<std::size_t>(std::countl_one(byte(0)));
    const std::size_t length = std::max<std::size_t>(ones, 1);
    bool valid = ones != 1 && ones <= 4 && length <= text.size();
    char32_t code = byte(0) & (0x7FU >> ones);
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xC0) == 0x80;
        code = code << 6 | (byte(i) & 0x3F);
    }
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    valid = valid && code >= least[length] && code <= 0x10FFFF && !surrogate;
    text.remove_prefix(valid ? length : 1);
    return valid ? code : replacement;
}

std::uint32_t blend(std::uint32_t below, std::uint32_t color, std::uint32_t coverage) {
    std::uint32_t mixed = 0xFF;
    for (const int shift : {16, 8, 0}) {
        const std::uint32_t from = below >> shift & 0xFF;
        const std::uint32_t to = color >> shift & 0xFF;
        mixed = mixed << 8 | (from * (255 - coverage) + to * coverage + 127) / 255;
    }
    return mixed;
}

/// A text may begin anywhere, where sums of its positions would leave the range of int.
using Position = std::int64_t;

/// Lays the grey picture of a character, its upper left corner at (left, top), into the picture.
void layGlyph(Bitmap& picture, Position left, Position top, const FT_Bitmap& glyph,
              std::uint32_t color) {
    const Position firstRow = std::max<Position>(0, -top);
    const Position lastRow = std::min<Position>(glyph.rows, picture.height - top);
    const Position first = std::max<Position>(0, -left);
    const Position last = std::min<Position>(glyph.width, picture.width - left);
    for (Position row = firstRow; row < lastRow; ++row) {
        const unsigned char* const coverage = glyph.buffer + row * glyph.pitch;
        const Position begin = (top + row) * picture.width + left;
        for (Position column = first; column < last; ++column) {
            std::uint32_t& pixel = picture.pixels[static_cast<std::size_t>(begin + column)];
            pixel = blend(pixel, color, coverage[column]);
        }
    }
}

/// Calls `use` with each character and its left edge in 64ths of a pixel from the beginning of the
/// line, while that gives true. Returns the length of what it has gone over.
template <typename Use>
FT_Pos walk(FT_Face face, std::string_view text, FT_Int32 how, Use use) {
    // Unhinted, so that a character looks the same in every place and width follows size.
    how |= static_cast<FT_Int32>(FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP);
    FT_Pos pen = 0;
    while (!text.empty()) {
        const char32_t character = takeCharacter(text);
        if (FT_Load_Char(face, character, how) != 0) continue;
        if (!use(*face->glyph, pen)) break;
        pen += face->glyph->advance.x;
    }
    return pen;
}

} // namespace

void layText(Bitmap& picture, int x, int y, const std::string& text, const Font& font,
             std::uint32_t color) {
    const FT_Face face = sizedFont(font);
    if (face == nullptr) return;
    const Position baseline = Position{y} + scaled(face, face->ascender);
    walk(face, text, FT_LOAD_RENDER, [&](const FT_GlyphSlotRec& glyph, FT_Pos pen) {
        const Position place = Position{x} + pixels(pen);
        layGlyph(picture, place + glyph.bitmap_left, baseline - glyph.bitmap_top, glyph.bitmap,
                 color);
        return place < picture.width;
    });
}

int laidWidth(const std::string& text, const Font& font) {
    const FT_Face face = sizedFont(font);
    if (face == nullptr) return 0;
    return pixels(walk(face, text, 0, [](const FT_GlyphSlotRec&, FT_Pos) { return true; }));
}

} // namespace polyfab
