#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "font_record.h"
#include "platform/text.h"

namespace platform {
namespace {

constexpr double kDefaultHeight = 13;  // of the em: what a height of 0 asks for
constexpr double kTallest = 16384;     // beyond it no glyph can be drawn
constexpr std::int32_t kBoldFrom = 550;

struct Free {
    void operator()(cairo_font_face_t* face) const noexcept { cairo_font_face_destroy(face); }
    void operator()(cairo_font_options_t* options) const noexcept { cairo_font_options_destroy(options); }
    void operator()(cairo_scaled_font_t* font) const noexcept { cairo_scaled_font_destroy(font); }
    void operator()(cairo_glyph_t* glyphs) const noexcept { cairo_glyph_free(glyphs); }
};
using ScaledFont = std::unique_ptr<cairo_scaled_font_t, Free>;

LONG Pixels(double size) noexcept {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return static_cast<LONG>(std::lround(std::fmin(std::fmax(size, 0), kMost)));
}

ScaledFont OpenAtSize(const Font& font, double em) noexcept {
    const std::unique_ptr<cairo_font_face_t, Free> face(
        cairo_toy_font_face_create(font.face, font.italic ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL,
                                   font.weight >= kBoldFrom ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL));
    // Whole pixels, as the glyphs of a dialog have them.
    const std::unique_ptr<cairo_font_options_t, Free> options(cairo_font_options_create());
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_ON);
    cairo_matrix_t size;
    cairo_matrix_init_scale(&size, em, em);
    cairo_matrix_t device;
    cairo_matrix_init_identity(&device);
    ScaledFont scaled(cairo_scaled_font_create(face.get(), &size, &device, options.get()));
    if (cairo_scaled_font_status(scaled.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return scaled;
}

// A negative height is that of the em, a positive one that of the whole cell.
ScaledFont Open(const Font& font, double& em) noexcept {
    const double wanted = std::fmin(std::abs(static_cast<double>(font.height)), kTallest);
    em = wanted == 0 ? kDefaultHeight : wanted;
    ScaledFont scaled = OpenAtSize(font, em);
    if (!scaled || font.height <= 0) return scaled;
    cairo_font_extents_t extents;
    cairo_scaled_font_extents(scaled.get(), &extents);
    const double cell = extents.ascent + extents.descent;
    if (cell <= 0) return nullptr;
    em = std::fmax(em * em / cell, 1);
    return OpenAtSize(font, em);
}

bool Width(cairo_scaled_font_t* font, WStringView text, double& width) {
    WString drawable(text);
    // Cairo takes no text with these in it.
    std::replace_if(
        drawable.begin(), drawable.end(), [](WCHAR c) { return c == 0 || c >= 0xFFFE; }, WCHAR{0xFFFD});
    const std::string bytes = Utf8(drawable);
    cairo_glyph_t* found = nullptr;
    int count = 0;
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return false;
    const cairo_status_t status = cairo_scaled_font_text_to_glyphs(
        font, 0, 0, bytes.data(), static_cast<int>(bytes.size()), &found, &count, nullptr, nullptr, nullptr);
    const std::unique_ptr<cairo_glyph_t, Free> glyphs(found);
    if (status != CAIRO_STATUS_SUCCESS) return false;
    cairo_text_extents_t extents;
    cairo_scaled_font_glyph_extents(font, glyphs.get(), count, &extents);
    width = extents.x_advance;
    return cairo_scaled_font_status(font) == CAIRO_STATUS_SUCCESS;
}

}  // namespace

bool MeasureFont(const Font& font, TEXTMETRICW& metrics) noexcept try {
    double em = 0;
    const ScaledFont scaled = Open(font, em);
    double letter = 0;
    if (!scaled || !Width(scaled.get(), u"x", letter)) return false;
    cairo_font_extents_t extents;
    cairo_scaled_font_extents(scaled.get(), &extents);
    metrics = {};
    metrics.tmAscent = Pixels(extents.ascent);
    metrics.tmDescent = Pixels(extents.descent);
    metrics.tmHeight = metrics.tmAscent + metrics.tmDescent;
    metrics.tmInternalLeading = Pixels(static_cast<double>(metrics.tmHeight) - em);
    metrics.tmExternalLeading = Pixels(extents.height - static_cast<double>(metrics.tmHeight));
    metrics.tmAveCharWidth = Pixels(letter);
    metrics.tmMaxCharWidth = Pixels(extents.max_x_advance);
    metrics.tmWeight = font.weight >= kBoldFrom ? FW_BOLD : FW_NORMAL;
    metrics.tmItalic = font.italic ? 1 : 0;
    metrics.tmCharSet = font.charset;
    metrics.tmDigitizedAspectX = metrics.tmDigitizedAspectY = kScreenDpi;
    return true;
} catch (...) {
    return false;
}

bool MeasureText(const Font& font, WStringView text, LONG& width) noexcept try {
    double em = 0;
    const ScaledFont scaled = Open(font, em);
    double advance = 0;
    if (!scaled || !Width(scaled.get(), text, advance)) return false;
    width = Pixels(advance);
    return true;
} catch (...) {
    return false;
}

}  // namespace platform
