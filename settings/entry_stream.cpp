#include "settings/entry_stream.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace clipfio {
namespace {

constexpr size_t kTextLimit = 0x10000;

// Numbers as our own files have them: up to 15 digits, perhaps with a sign and a point. The digits and the power of ten
// are then exact, and one division rounds as atof does. False for anything else.
bool ParsePlain(std::string_view text, double& out) noexcept {
    constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr size_t kDigits = std::size(kPowers) - 1;
    const bool isNegative = text.starts_with('-');
    if (isNegative) text.remove_prefix(1);
    int64_t digits = 0;
    size_t count = 0;
    size_t beforePoint = text.size();
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] >= '0' && text[i] <= '9') {
            if (++count > kDigits) return false;
            digits = digits * 10 + (text[i] - '0');
        } else if (text[i] == '.' && beforePoint == text.size()) {
            beforePoint = count;
        } else {
            return false;
        }
    }
    if (count == 0) return false;
    const double value = static_cast<double>(digits) / kPowers[count - std::min(beforePoint, count)];
    out = isNegative ? -value : value;
    return true;
}

}  // namespace

EntrySource::EntrySource(IStream* stream, Reading reading) noexcept
    : stream_(stream),
      blockBytes_(reading == Reading::InBlocks ? sizeof block_ : 1),
      pointIsDot_(std::atof("0.5") == 0.5),
      next_(block_),
      end_(block_) {}

HRESULT EntrySource::Fill() noexcept {
    if (ended_) return S_FALSE;
    ULONG read = 0;
    const HRESULT hr = stream_->Read(block_, blockBytes_, &read);
    if (FAILED(hr)) return hr;
    read = std::min<ULONG>(read, blockBytes_);
    ended_ = read == 0 || (hr == S_FALSE && read < blockBytes_);
    next_ = block_;
    end_ = block_ + read;
    return read == 0 ? S_FALSE : S_OK;
}

HRESULT EntrySource::Keep(std::string_view part) noexcept {
    try {
        spill_.append(part.substr(0, kTextLimit - spill_.size()));
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT EntrySource::ReadUntil(char delimiter) noexcept {
    spill_.clear();
    for (;;) {
        HRESULT hr = next_ == end_ ? Fill() : S_OK;
        if (hr != S_OK) {
            text_ = spill_;
            return hr;
        }
        char* const found = static_cast<char*>(std::memchr(next_, delimiter, static_cast<size_t>(end_ - next_)));
        char* const stop = found ? found : end_;
        const std::string_view part(next_, static_cast<size_t>(stop - next_));
        next_ = found ? found + 1 : end_;
        if (found && spill_.empty()) {
            *found = '\0';
            text_ = part;
            return S_OK;
        }
        hr = Keep(part);
        if (FAILED(hr) || found) {
            text_ = spill_;
            return hr;
        }
    }
}

double EntrySource::Number() const noexcept {
    double number = 0;
    return pointIsDot_ && ParsePlain(text_, number) ? number : std::atof(text_.data());
}

HRESULT WriteText(IStream* stream, std::string_view text) noexcept {
    const ULONG bytes = static_cast<ULONG>(text.size());
    ULONG written = bytes;  // a stream that does not count has written all
    const HRESULT hr = stream->Write(text.data(), bytes, &written);
    if (FAILED(hr)) return hr;
    return written < bytes ? STG_E_MEDIUMFULL : S_OK;
}

}  // namespace clipfio
