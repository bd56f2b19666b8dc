// Messages that are composed of a text with numbered inserts.
#include <algorithm>
#include <cstdarg>

#include "errors.h"
#include "platform/modules.h"

namespace {

using platform::Fail;

class Output {
  public:
    Output(WCHAR* out, std::size_t size) noexcept : out_(out), size_(size) {}
    void Put(WStringView text) noexcept {
        const std::size_t room = count_ < size_ ? size_ - count_ : 0;
        std::copy_n(text.data(), std::min(room, text.size()), out_ + std::min(count_, size_));
        count_ += text.size();
    }
    // Characters without the terminator, or 0 when they do not fit.
    [[nodiscard]] DWORD Finish() noexcept {
        if (count_ >= size_) {
            if (size_ > 0) out_[0] = 0;
            return Fail(ERROR_INSUFFICIENT_BUFFER, DWORD{0});
        }
        out_[count_] = 0;
        return static_cast<DWORD>(count_);
    }

  private:
    WCHAR* out_;
    std::size_t size_;
    std::size_t count_ = 0;
};

// The arguments stand one behind the other, so that the ones in front are passed over.
WStringView Insert(std::va_list arguments, int number) noexcept {
    std::va_list rest;
    va_copy(rest, arguments);
    const WCHAR* text = nullptr;
    for (int i = 0; i < number; ++i) text = va_arg(rest, const WCHAR*);
    va_end(rest);
    return text ? WStringView(text) : u"(null)";
}

}  // namespace

extern "C" DWORD FormatMessageW(DWORD flags, const void* source, DWORD, DWORD, WCHAR* out, DWORD size,
                                std::va_list* arguments) noexcept {
    if (flags != FORMAT_MESSAGE_FROM_STRING || !source || !out || !arguments) {
        return Fail(ERROR_INVALID_PARAMETER, DWORD{0});
    }
    Output output(out, size);
    for (const auto* at = static_cast<const WCHAR*>(source); *at; ++at) {
        if (*at == u'\n' || (*at == u'\r' && at[1] == u'\n')) {
            at += *at == u'\r' ? 1 : 0;
            output.Put(u"\r\n");
            continue;
        }
        if (*at != u'%') {
            output.Put({at, 1});
            continue;
        }
        ++at;
        if (*at == u'0') break;
        if (*at >= u'1' && *at <= u'9') {
            int number = *at - u'0';
            if (at[1] >= u'0' && at[1] <= u'9') number = number * 10 + (*++at - u'0');
            if (at[1] == u'!') return Fail(ERROR_NOT_SUPPORTED, DWORD{0});
            output.Put(Insert(*arguments, number));
        } else if (*at == u'n') {
            output.Put(u"\r\n");
        } else if (*at == 0) {
            return Fail(ERROR_INVALID_PARAMETER, DWORD{0});
        } else {
            output.Put({at, 1});
        }
    }
    return output.Finish();
}
