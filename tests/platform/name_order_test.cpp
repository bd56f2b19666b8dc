// The logical order of names, where Win32 says no more than that digits count as numbers and case for nothing.
#include <gtest/gtest.h>

#include "platform/text.h"

namespace {

TEST(NameOrder, NumbersOfAnyLengthSignsFirstLettersLast) {
    const WCHAR* const kInOrder[] = {u"",
                                     u"_",
                                     u"2",
                                     u"0010",
                                     u"clip",
                                     u"clip 9",
                                     u"clip 10",
                                     u"clip-1",
                                     u"clip99999999999999999999",
                                     u"clip100000000000000000000",
                                     u"clipa",
                                     u"\u00E4"};
    for (size_t i = 0; i < std::size(kInOrder); ++i) {
        for (size_t j = 0; j < std::size(kInOrder); ++j) {
            const int expected = i < j ? -1 : i > j ? 1 : 0;
            EXPECT_EQ(StrCmpLogicalW(kInOrder[i], kInOrder[j]), expected)
                << platform::Utf8(kInOrder[i]) << " and " << platform::Utf8(kInOrder[j]);
        }
    }
    EXPECT_EQ(StrCmpLogicalW(u"a007b", u"A7B"), 0);
    EXPECT_EQ(StrCmpLogicalW(u"\u00C4i", u"\u00E4I"), 0);
}

}  // namespace
