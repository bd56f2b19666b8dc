// Pictures and dialogs as our own layer makes them: forms that Wine reads otherwise, and calls that fail.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/images.h"
#include "support/dialog_template.h"
#include "support/fail_each.h"
#include "support/picture_files.h"

namespace {

using support::Doubles;
using support::File;
using support::InfoHeader;
using support::kPalette;
using support::Shown;

constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF;

TEST(DocumentedDetails, PicturesLieTopFirstAndInRuns) {
    using namespace std::string_literals;
    const std::vector<uint32_t> colors = {kRed, kGreen, kBlue, kWhite};
    const struct {
        const char* name;
        std::string file;
        std::vector<uint32_t> pixels;  // two rows of two
    } kRows[] = {
        {"24, top first", File(InfoHeader(2, -2, 24), "\0\0\xFF\0\xFF\0\0\0\xFF\0\0\xFF\xFF\xFF\0\0"s), colors},
        {"runs of 8", File(InfoHeader(2, 2, 8, 1, 5) + kPalette, "\1\3\1\4\0\0\1\1\1\2\0\1"s), colors},
        {"runs of 8, as they are", File(InfoHeader(4, 1, 8, 1, 5) + kPalette, "\0\3\1\2\3\0\1\4\0\1"s), colors},
        {"runs of 8, a step",
         File(InfoHeader(2, 2, 8, 1, 5) + kPalette, "\2\4\0\2\0\0\0\0\2\1\0\1"s),
         {kRed, kRed, kWhite, kWhite}},
        {"runs of 4", File(InfoHeader(2, 2, 4, 2, 5) + kPalette, "\2\x34\0\0\2\x12\0\1"s), colors},
    };
    for (const auto& row : kRows) EXPECT_EQ(support::LoadBitmapFile(row.file).pixels, row.pixels) << row.name;
}

TEST(DocumentedDetails, PicturesThatDoNotAddUpAreRefused) {
    const std::string rows(64, '\0');
    const std::string kFiles[] = {
        File(InfoHeader(0, 2, 24), rows),
        File(InfoHeader(-2, 2, 24), rows),
        File(InfoHeader(100, 100, 24), rows),  // more rows than there are
        File(InfoHeader(2, 2, 7), rows),
    };
    for (const std::string& file : kFiles) {
        EXPECT_EQ(support::LoadBitmapFile(file), Shown{}) << testing::PrintToString(file.substr(0, 60));
    }
}

TEST(FaultsOfObjects, LeaveNoPictureHalfMade) {
    const support::TempFile file(".bmp");
    support::WriteWhole(file.Path(), File(InfoHeader(2, 1, 32), Doubles({kRed, kBlue})));
    support::FailEach<support::FailingCall>(
        [&] {
            const HIMAGELIST list =
                ImageList_LoadImageW(nullptr, file.Path(), 1, 0, CLR_NONE, IMAGE_BITMAP, LR_LOADFROMFILE);
            const HICON icon = ImageList_GetIcon(list, 1, 0);
            ICONINFO info{};
            const bool known = GetIconInfo(icon, &info) != FALSE;
            const HBITMAP bitmaps[] = {info.hbmMask, info.hbmColor};
            for (const HBITMAP each : bitmaps) DeleteObject(each);
            if (icon) DestroyIcon(icon);
            if (list) ImageList_Destroy(list);
            return known;
        },
        [](bool known, bool failed) { EXPECT_NE(known, failed); });
}

TEST(FaultsOfObjects, LeaveNoDialogHalfMade) {
    const support::Template source = support::Plain(WS_POPUP | DS_SETFONT, 101, 53, 1)
                                         .Word(0)
                                         .Word(0)
                                         .Text(W("Title"))
                                         .Word(9)
                                         .Text(W("DejaVu Sans"))
                                         .Align()
                                         .Double(WS_CHILD)
                                         .Double(0)
                                         .Word(1)
                                         .Word(2)
                                         .Word(33)
                                         .Word(12)
                                         .Word(4)
                                         .Text(W("edit"))
                                         .Text(W("text"))
                                         .Word(0);
    const int calls = support::FailEach<support::FailingCall>(
        [&] { return CreateDialogIndirectParamW(nullptr, source.Get(), nullptr, nullptr, 0); },
        [](HWND dialog, bool failed) {
            EXPECT_EQ(GetDlgItem(dialog, 4) == nullptr, failed);
            EXPECT_EQ(DestroyWindow(dialog) == FALSE, failed);
        });
    EXPECT_GT(calls, 3);  // the dialog, its font, its window and that of its control
}

}  // namespace
