// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/TextLayout/TextLayoutModuleInternal.h>

#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

namespace {

struct Unreference {
    void operator()(gpointer object) const noexcept { g_object_unref(object); }
};
template <class Type>
using Object = std::unique_ptr<Type, Unreference>;

struct FreeFontDescription {
    void operator()(PangoFontDescription* description) const noexcept { pango_font_description_free(description); }
};

struct UnreferenceAttributes {
    void operator()(PangoAttrList* attributes) const noexcept { pango_attr_list_unref(attributes); }
};

// Hinted glyphs have whole widths.
void withoutHinting(FcPattern* pattern, gpointer) {
    for (const char* property : {FC_HINTING, FC_AUTOHINT, FC_HINT_STYLE}) FcPatternDel(pattern, property);
    FcPatternAddBool(pattern, FC_HINTING, FcFalse);
    FcPatternAddBool(pattern, FC_AUTOHINT, FcFalse);
    FcPatternAddInteger(pattern, FC_HINT_STYLE, FC_HINT_NONE);
}

Object<PangoContext> makeContext() {
    const Object<PangoFontMap> fonts(pango_ft2_font_map_new());
    // At 72 dots an inch a point is a unit.
    pango_ft2_font_map_set_resolution(PANGO_FT2_FONT_MAP(fonts.get()), 72, 72);
    pango_fc_font_map_set_default_substitute(PANGO_FC_FONT_MAP(fonts.get()), withoutHinting, nullptr, nullptr);
    Object<PangoContext> context(pango_font_map_create_context(fonts.get()));
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    // Else the process's locale would have a say in the choice of fonts.
    pango_context_set_language(context.get(), pango_language_from_string("en"));
    return context;
}

// In units of 64 bits: Pango's own sums would run over for a text of a million characters.
std::int64_t widthOf(const PangoLayoutLine& line) {
    std::int64_t width = 0;
    for (const GSList* run = line.runs; run != nullptr; run = run->next) {
        const PangoGlyphString& glyphs = *static_cast<const PangoGlyphItem*>(run->data)->glyphs;
        for (int at = 0; at < glyphs.num_glyphs; ++at) width += glyphs.glyphs[at].geometry.width;
    }
    return width;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void ZORFoundationMeasureText1(const char* text, std::size_t bytes,
                                                                                 const char* family, double pointSize,
                                                                                 double width, double size[2]) {
    thread_local const Object<PangoContext> context = makeContext();
    const Object<PangoLayout> layout(pango_layout_new(context.get()));

    const std::unique_ptr<PangoFontDescription, FreeFontDescription> font(pango_font_description_new());
    pango_font_description_set_family(font.get(), family);
    pango_font_description_set_absolute_size(font.get(), pointSize * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), font.get());

    // Pango would give room to a hyphen wherever it breaks within a word.
    const std::unique_ptr<PangoAttrList, UnreferenceAttributes> attributes(pango_attr_list_new());
    pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
    pango_layout_set_attributes(layout.get(), attributes.get());

    const double widthInUnits = std::floor(width * PANGO_SCALE);
    if (widthInUnits <= std::numeric_limits<int>::max()) {
        pango_layout_set_width(layout.get(), static_cast<int>(widthInUnits));
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    }
    pango_layout_set_text(layout.get(), text, static_cast<int>(bytes));

    std::int64_t widest = 0;
    std::int64_t height = 0;
    for (GSList* at = pango_layout_get_lines_readonly(layout.get()); at != nullptr; at = at->next) {
        auto* const line = static_cast<PangoLayoutLine*>(at->data);
        int lineHeight = 0;
        pango_layout_line_get_height(line, &lineHeight);
        widest = std::max(widest, widthOf(*line));
        height += lineHeight;
    }
    size[0] = static_cast<double>(widest) / PANGO_SCALE;
    size[1] = static_cast<double>(height) / PANGO_SCALE;
}
