// Fonts and the measures of text.
#include "platform/gdi.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/text.h"

namespace {

HFONT Font(int height, int weight = FW_NORMAL, const WCHAR* face = W("DejaVu Sans")) {
    return CreateFontW(height, 0, 0, 0, weight, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, face);
}

struct Measures {
    SIZE extent{};
    TEXTMETRICW metrics{};
};

// What `text` takes in `font`, which is deleted; in the first font of a context for null.
Measures Measure(HFONT font, WStringView text) {
    Measures found;
    const HDC screen = GetDC(nullptr);
    EXPECT_TRUE(screen);
    const HGDIOBJ before = font ? SelectObject(screen, font) : nullptr;
    EXPECT_EQ(before != nullptr, font != nullptr);
    EXPECT_TRUE(GetTextExtentPoint32W(screen, text.data(), static_cast<int>(text.size()), &found.extent));
    EXPECT_TRUE(GetTextMetricsW(screen, &found.metrics));
    if (font) {
        EXPECT_EQ(SelectObject(screen, before), font);
        EXPECT_TRUE(DeleteObject(font));
    }
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    return found;
}

TEST(Drawing, MeasuresTextInTheSelectedFont) {
    const Measures first = Measure(nullptr, W("mm"));
    EXPECT_GT(first.extent.cx, 0);
    const Measures em = Measure(Font(-40), W("mm"));
    EXPECT_EQ(em.extent.cy, em.metrics.tmHeight);
    EXPECT_EQ(em.metrics.tmHeight, em.metrics.tmAscent + em.metrics.tmDescent);
    EXPECT_NEAR(static_cast<double>(em.metrics.tmHeight - em.metrics.tmInternalLeading), 40, 1);
    EXPECT_EQ(em.extent.cx, 2 * Measure(Font(-40), W("m")).extent.cx);
    EXPECT_GT(em.extent.cx, Measure(Font(-40), W("ii")).extent.cx);
    EXPECT_EQ(Measure(Font(-40), W("")).extent.cx, 0);
    EXPECT_GT(Measure(Font(-40, FW_BOLD), W("mm")).metrics.tmWeight, FW_NORMAL);
    // A positive height is the whole cell's.
    EXPECT_NEAR(static_cast<double>(Measure(Font(40), W("m")).metrics.tmHeight), 40, 1);
    EXPECT_GT(Measure(Font(-40, FW_NORMAL, W("no such face")), W("m")).extent.cx, 0);
}

TEST(Drawing, TakesOddTexts) {
    // A surrogate without its half, characters that few fonts have, and a text of many.
    const WCHAR odd[] = {0xD800, 'a', 0xDC00, 0xFFFF, 0x0301};
    EXPECT_GT(Measure(Font(-10), WStringView(odd, 5)).extent.cx, 0);
    const LONG one = Measure(Font(-10), W("a")).extent.cx;
    EXPECT_EQ(Measure(Font(-10), WString(10'000, 'a')).extent.cx, 10'000 * one);
}

TEST(Drawing, RefusesWrongHandles) {
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(GetDeviceCaps(screen, LOGPIXELSX), 96);
    EXPECT_EQ(GetDeviceCaps(screen, LOGPIXELSY), 96);
    SIZE size{};
    TEXTMETRICW metrics{};
    EXPECT_FALSE(SelectObject(screen, nullptr));
    EXPECT_FALSE(GetTextExtentPoint32W(nullptr, W("a"), 1, &size));
    EXPECT_FALSE(GetTextExtentPoint32W(screen, W("a"), -1, &size));
    EXPECT_FALSE(GetTextMetricsW(nullptr, &metrics));
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
    EXPECT_EQ(ReleaseDC(nullptr, screen), 0);
    EXPECT_FALSE(GetTextMetricsW(screen, &metrics));
    const HFONT font = Font(-10);
    EXPECT_FALSE(SelectObject(nullptr, font));
    EXPECT_TRUE(DeleteObject(font));
    EXPECT_FALSE(DeleteObject(font));
    EXPECT_FALSE(DeleteObject(nullptr));
}

}  // namespace
