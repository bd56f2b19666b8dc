// The order of texts, by the collation that Unicode gives for no language in particular.
#include <unicode/ucol.h>

#include <memory>

#include "platform/text.h"

namespace {

struct CloseCollator {
    void operator()(UCollator* collator) const noexcept { ucol_close(collator); }
};
using Collator = std::unique_ptr<UCollator, CloseCollator>;

Collator Open(UCollationStrength strength) noexcept {
    UErrorCode error = U_ZERO_ERROR;
    Collator collator(ucol_open("", &error));
    if (collator) ucol_setStrength(collator.get(), strength);
    return collator;
}

int Compare(const Collator& collator, const WCHAR* a, const WCHAR* b) noexcept {
    if (!a || !b) return (a ? 1 : 0) - (b ? 1 : 0);
    // Without ICU's data there is only the order of the numbers.
    if (!collator) return WStringView(a).compare(b);
    return ucol_strcoll(collator.get(), a, -1, b, -1);
}

}  // namespace

extern "C" int lstrcmpW(const WCHAR* a, const WCHAR* b) noexcept {
    static const Collator collator = Open(UCOL_TERTIARY);
    return Compare(collator, a, b);
}

extern "C" int lstrcmpiW(const WCHAR* a, const WCHAR* b) noexcept {
    static const Collator collator = Open(UCOL_SECONDARY);
    return Compare(collator, a, b);
}
