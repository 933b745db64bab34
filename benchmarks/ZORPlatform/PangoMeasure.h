// SPDX-License-Identifier: Apache-2.0
#pragma once

// Pango as a program would use it that measures texts itself, with the same settings as the module.

#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

#include <string_view>

namespace benchmarks {

class PangoMeasure {
public:
    PangoMeasure() : fonts_(pango_ft2_font_map_new()), font_(pango_font_description_new()) {
        pango_ft2_font_map_set_resolution(PANGO_FT2_FONT_MAP(fonts_), 72, 72);
        const auto unhinted = [](FcPattern* pattern, gpointer) {
            FcPatternDel(pattern, FC_HINTING);
            FcPatternAddBool(pattern, FC_HINTING, FcFalse);
        };
        pango_fc_font_map_set_default_substitute(PANGO_FC_FONT_MAP(fonts_), unhinted, nullptr, nullptr);
        context_ = pango_font_map_create_context(fonts_);
        pango_context_set_round_glyph_positions(context_, FALSE);
        pango_font_description_set_family(font_, "DejaVu Sans");
        pango_font_description_set_absolute_size(font_, 12 * PANGO_SCALE);
    }
    ~PangoMeasure() {
        g_object_unref(context_);
        pango_font_description_free(font_);
        g_object_unref(fonts_);
    }
    PangoMeasure(const PangoMeasure&) = delete;
    PangoMeasure& operator=(const PangoMeasure&) = delete;

    /// The height of `text` in lines of at most `width` points.
    [[nodiscard]] double height(std::string_view text, double width) const {
        PangoLayout* const layout = pango_layout_new(context_);
        pango_layout_set_font_description(layout, font_);
        pango_layout_set_width(layout, pango_units_from_double(width));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        PangoRectangle rectangle;
        pango_layout_get_extents(layout, nullptr, &rectangle);
        g_object_unref(layout);
        return pango_units_to_double(rectangle.height);
    }

private:
    PangoFontMap* fonts_;
    PangoFontDescription* font_;
    PangoContext* context_ = nullptr;
};

}  // namespace benchmarks
