// SPDX-License-Identifier: Apache-2.0
#pragma once

// Pango as a program would use it that measures texts itself, with the same settings as the module.

#include <tests/support/PangoFonts.h>

#include <string_view>

namespace benchmarks {

class PangoMeasure {
public:
    PangoMeasure() : font_(pango_font_description_new()) {
        pango_font_description_set_family(font_, "DejaVu Sans");
        pango_font_description_set_absolute_size(font_, 12 * PANGO_SCALE);
    }
    ~PangoMeasure() { pango_font_description_free(font_); }
    PangoMeasure(const PangoMeasure&) = delete;
    PangoMeasure& operator=(const PangoMeasure&) = delete;

    /// The height of `text` in lines of at most `width` points.
    [[nodiscard]] double height(std::string_view text, double width) const {
        PangoLayout* const layout = pango_layout_new(fonts_.context());
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
    PangoFonts fonts_;
    PangoFontDescription* font_;
};

}  // namespace benchmarks
