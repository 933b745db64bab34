// SPDX-License-Identifier: Apache-2.0
#pragma once

// Fonts as Pango itself has them, set as the text layout module sets them: points are pixels, nothing is hinted or
// rounded.

#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>
#include <pango/pangoft2.h>

class PangoFonts {
public:
    PangoFonts() : map_(pango_ft2_font_map_new()) {
        pango_ft2_font_map_set_resolution(PANGO_FT2_FONT_MAP(map_), 72, 72);
        const auto unhinted = [](FcPattern* pattern, gpointer) {
            FcPatternDel(pattern, FC_HINTING);
            FcPatternAddBool(pattern, FC_HINTING, FcFalse);
        };
        pango_fc_font_map_set_default_substitute(PANGO_FC_FONT_MAP(map_), unhinted, nullptr, nullptr);
        context_ = pango_font_map_create_context(map_);
        pango_context_set_round_glyph_positions(context_, FALSE);
        pango_context_set_language(context_, pango_language_from_string("en"));
    }
    ~PangoFonts() {
        g_object_unref(context_);
        g_object_unref(map_);
    }
    PangoFonts(const PangoFonts&) = delete;
    PangoFonts& operator=(const PangoFonts&) = delete;

    [[nodiscard]] PangoContext* context() const noexcept { return context_; }

private:
    PangoFontMap* map_;
    PangoContext* context_;
};
