#include "settings/entry_stream.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace clipfio {
namespace {

constexpr size_t kTextLimit = 0x10000;

}  // namespace

EntrySource::EntrySource(IStream* stream, Reading reading) noexcept
    : stream_(stream), blockBytes_(reading == Reading::InBlocks ? sizeof block_ : 1), next_(block_), end_(block_) {}

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

HRESULT WriteText(IStream* stream, std::string_view text) noexcept {
    const ULONG bytes = static_cast<ULONG>(text.size());
    ULONG written = bytes;  // a stream that does not count has written all
    const HRESULT hr = stream->Write(text.data(), bytes, &written);
    if (FAILED(hr)) return hr;
    return written < bytes ? STG_E_MEDIUMFULL : S_OK;
}

}  // namespace clipfio
