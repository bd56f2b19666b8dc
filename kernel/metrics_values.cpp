#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "kernel/guard.h"
#include "kernel/metrics.h"
#include "kernel/metrics_record.h"
#include "kernel/text_copy.h"

namespace {

using clipfio::MetricKey;

constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8004E03Cu);
constexpr HRESULT kOtherType = static_cast<HRESULT>(0x8004E00Au);
constexpr uint32_t kMostStreamBytes = 2048;
constexpr uint32_t kUnit = sizeof(WCHAR);

// The name of a value: a letter for its type, and the number without its sign.
class ValueName {
  public:
    static constexpr size_t kSize = 12;

    ValueName(int32_t metric, WStringView letter) noexcept {
        uint32_t number = metric < 0 ? 0u - static_cast<uint32_t>(metric) : static_cast<uint32_t>(metric);
        do {
            *--start_ = static_cast<WCHAR>(W('0') + number % 10);
        } while ((number /= 10) != 0);
        start_ -= letter.copy(start_ - letter.size(), letter.size());
    }
    ValueName(const ValueName&) = delete;
    ValueName& operator=(const ValueName&) = delete;
    [[nodiscard]] const WCHAR* Text() const noexcept { return start_; }

  private:
    WCHAR text_[kSize] = {};
    WCHAR* start_ = text_ + kSize - 1;
};

WStringView LetterOf(uint32_t type) noexcept {
    switch (type) {
        case REG_DWORD:
            return W("");
        case REG_SZ:
            return W("S");
        case REG_BINARY:
            return W("B");
        default:
            return W("Z");
    }
}

struct Stored {
    LSTATUS result;
    DWORD type = 0;
    DWORD bytes = 0;  // of the value, also when it does not fit

    [[nodiscard]] bool Is(uint32_t wanted) const noexcept { return result == ERROR_SUCCESS && type == wanted; }
};

Stored Query(HKEY key, const WCHAR* name, void* data, uint32_t size) noexcept {
    Stored stored{};
    stored.bytes = data ? size : 0;
    stored.result = RegQueryValueExW(key, name, nullptr, &stored.type, static_cast<BYTE*>(data), &stored.bytes);
    if (stored.result != ERROR_SUCCESS && stored.result != ERROR_MORE_DATA) stored.bytes = 0;
    return stored;
}

HRESULT Store(HKTMETRIC handle, int32_t metric, uint32_t type, const void* data, uint32_t bytes) noexcept {
    const HKEY key = MetricKey(handle);
    if (!key || (!data && bytes != 0)) return E_FAIL;
    const LSTATUS result =
        RegSetValueExW(key, ValueName(metric, LetterOf(type)).Text(), 0, type, static_cast<const BYTE*>(data), bytes);
    return result == ERROR_SUCCESS ? S_OK : E_FAIL;
}

bool ReadNumber(HKEY key, const WCHAR* name, uint32_t& number) noexcept {
    uint32_t value = 0;
    const Stored stored = Query(key, name, &value, sizeof value);
    if (!stored.Is(REG_DWORD) || stored.bytes != sizeof value) return false;
    number = value;
    return true;
}

uint32_t Limited(uint32_t value, int32_t lowest, int32_t highest) noexcept {
    if (lowest == highest) return value;
    return static_cast<uint32_t>(std::min(std::max(static_cast<int32_t>(value), lowest), highest));
}

void ClearFrom(void* data, uint32_t from, uint32_t size) noexcept {
    if (data && from < size) std::memset(static_cast<char*>(data) + from, 0, size - from);
}

WCHAR UnitAt(const void* data, uint32_t offset) noexcept {
    WCHAR unit = 0;
    std::memcpy(&unit, static_cast<const char*>(data) + offset, kUnit);
    return unit;
}

void TerminateAt(void* data, uint32_t offset) noexcept { std::memset(static_cast<char*>(data) + offset, 0, kUnit); }

// Terminates a text of `bytes` in a buffer of `size`, which has to lose its last character where there is no room.
HRESULT CloseText(void* data, uint32_t bytes, uint32_t size, uint32_t& got) noexcept {
    const uint32_t end = bytes / kUnit * kUnit;
    if (size - end >= kUnit) {
        TerminateAt(data, end);
        return S_OK;
    }
    if (end != 0 && UnitAt(data, end - kUnit) == 0) return S_OK;
    if (end != 0) TerminateAt(data, end - kUnit);
    got += kUnit;
    return kBufferTooSmall;
}

// As much of a text as there is room for: what the system leaves in a buffer that is too small is anything.
void CopyCutText(HKEY key, const WCHAR* name, uint32_t bytes, void* data, uint32_t size) noexcept {
    ClearFrom(data, 0, size);
    if (size < kUnit) return;
    const HRESULT hr = clipfio::Guarded([&] {
        std::vector<char> whole(bytes);
        const Stored stored = Query(key, name, whole.data(), bytes);
        if (stored.Is(REG_SZ))
            std::memcpy(data, whole.data(), std::min<uint32_t>(stored.bytes, (size / kUnit - 1) * kUnit));
        return S_OK;
    });
    static_cast<void>(hr);  // out of memory leaves the text empty
}

int32_t ReadText(HKTMETRIC handle, int32_t metric, uint32_t type, WCHAR* buffer, int32_t size, const WCHAR* fallback,
                 int32_t allow_empty) noexcept {
    if (!buffer || size < 1) return 0;
    const auto room = static_cast<uint32_t>(std::min<int64_t>(int64_t{size} * kUnit, UINT32_MAX / kUnit * kUnit));
    const HKEY key = MetricKey(handle);
    const Stored stored =
        key ? Query(key, ValueName(metric, LetterOf(type)).Text(), buffer, room) : Stored{ERROR_BADKEY};
    const uint32_t bytes = stored.Is(type) ? stored.bytes / kUnit * kUnit : 0;
    const bool is_terminated = bytes != 0 && UnitAt(buffer, bytes - kUnit) == 0;
    const bool fits = stored.Is(type) && (is_terminated || bytes < room);
    if (fits && bytes > kUnit) {
        ClearFrom(buffer, bytes, room);
        return static_cast<int32_t>(bytes / kUnit) - (is_terminated ? 1 : 0);
    }
    ClearFrom(buffer, 0, room);
    if (fits && allow_empty) return 0;
    return fallback ? clipfio::CopyText(buffer, size, fallback) : 0;
}

HRESULT ToStart(IStream* stream) noexcept { return stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr); }

HRESULT DeleteValue(HKTMETRIC handle, const WCHAR* name) noexcept {
    const HKEY key = MetricKey(handle);
    if (!key) return S_FALSE;
    return RegDeleteValueW(key, name) == ERROR_SUCCESS ? S_OK : E_FAIL;
}

}  // namespace

uint32_t KtGetMetric(HKTMETRIC handle, int32_t metric) noexcept { return KtGetMetricEx(handle, metric, 0, 0, 0); }

uint32_t KtGetMetricEx(HKTMETRIC handle, int32_t metric, int32_t lowest, int32_t highest, int32_t fallback) noexcept {
    auto value = static_cast<uint32_t>(fallback);
    if (!clipfio::MetricRecord(handle)) return value;
    if (const HKEY key = MetricKey(handle)) ReadNumber(key, ValueName(metric, LetterOf(REG_DWORD)).Text(), value);
    return Limited(value, lowest, highest);
}

int32_t KtGetMetricBool(HKTMETRIC handle, int32_t metric, int32_t fallback) noexcept {
    return KtGetMetricEx(handle, metric, 0, 0, fallback) != 0;
}

HRESULT KtSetMetric(HKTMETRIC handle, int32_t metric, uint32_t value) noexcept {
    return Store(handle, metric, REG_DWORD, &value, sizeof value);
}

uint32_t KtGetMetricUsingName(HKTMETRIC handle, const WCHAR* name, uint32_t fallback) noexcept {
    if (const HKEY key = MetricKey(handle); key && name) ReadNumber(key, name, fallback);
    return fallback;
}

HRESULT KtSetMetricUsingName(HKTMETRIC handle, const WCHAR* name, uint32_t value) noexcept {
    const HKEY key = MetricKey(handle);
    if (!key || !name) return E_FAIL;
    return HRESULT_FROM_WIN32(static_cast<DWORD>(
        RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value)));
}

HRESULT KtGetMetricAny(HKTMETRIC handle, int32_t metric, uint32_t type, void* data, uint32_t size,
                       uint32_t* got) noexcept {
    uint32_t unused = 0;
    uint32_t& bytes = got ? *got : unused;
    bytes = 0;
    const HKEY key = MetricKey(handle);
    if (!key) return E_UNEXPECTED;
    const ValueName name(metric, LetterOf(type));
    const Stored stored = Query(key, name.Text(), data, size);
    bytes = stored.bytes;
    if (stored.result == ERROR_MORE_DATA) {
        if (type == REG_SZ) CopyCutText(key, name.Text(), bytes, data, size);
        return kBufferTooSmall;
    }
    if (stored.result == ERROR_SUCCESS && stored.type != type) {
        bytes = 0;
        return kOtherType;
    }
    return type == REG_SZ && data ? CloseText(data, bytes, size, bytes) : S_OK;
}

uint32_t KtGetMetricBinary(HKTMETRIC handle, int32_t metric, void* data, uint32_t size) noexcept {
    uint32_t got = 0;
    return data && KtGetMetricBinaryEx(handle, metric, data, size, &got) == S_OK ? got : 0;
}

HRESULT KtGetMetricBinaryEx(HKTMETRIC handle, int32_t metric, void* data, uint32_t size, uint32_t* got) noexcept {
    if (!got) return E_INVALIDARG;
    *got = 0;
    const HKEY key = MetricKey(handle);
    const Stored stored =
        key ? Query(key, ValueName(metric, LetterOf(REG_BINARY)).Text(), data, size) : Stored{ERROR_BADKEY};
    const bool is_there = stored.Is(REG_BINARY);
    ClearFrom(data, is_there ? stored.bytes : 0, size);
    if (!key) return kOtherType;
    if (is_there || stored.result == ERROR_MORE_DATA) *got = stored.bytes;
    if (is_there) return S_OK;
    return stored.result == ERROR_MORE_DATA ? kBufferTooSmall : S_FALSE;
}

HRESULT KtSetMetricBinary(HKTMETRIC handle, int32_t metric, const void* data, uint32_t size) noexcept {
    return Store(handle, metric, REG_BINARY, data, size);
}

HRESULT KtGetMetricStream(HKTMETRIC handle, int32_t metric, IStream* stream) noexcept {
    if (!stream) return E_INVALIDARG;
    return clipfio::Guarded([=]() -> HRESULT {
        uint32_t size = 0;
        if (KtGetMetricBinaryEx(handle, metric, nullptr, 0, &size) != S_OK || size == 0) return E_UNEXPECTED;
        std::vector<char> block(size);
        if (KtGetMetricBinary(handle, metric, block.data(), size) != size) return E_UNEXPECTED;
        if (const HRESULT hr = ToStart(stream); FAILED(hr)) return hr;
        ULONG written = 0;
        if (const HRESULT hr = stream->Write(block.data(), size, &written); FAILED(hr)) return hr;
        return written == size ? S_OK : E_UNEXPECTED;
    });
}

HRESULT KtSetMetricStream(HKTMETRIC handle, int32_t metric, IStream* stream) noexcept {
    if (!MetricKey(handle)) return E_FAIL;
    if (!stream) return E_INVALIDARG;
    HGLOBAL block = nullptr;
    if (const HRESULT hr = GetHGlobalFromStream(stream, &block); FAILED(hr)) return hr;
    ULARGE_INTEGER size{};
    if (const HRESULT hr = stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_END, &size); FAILED(hr)) return hr;
    if (size.QuadPart > kMostStreamBytes) return E_INVALIDARG;
    if (size.QuadPart == 0 || size.QuadPart > GlobalSize(block)) return E_UNEXPECTED;
    const void* const data = GlobalLock(block);
    if (!data) return E_UNEXPECTED;
    const HRESULT hr = KtSetMetricBinary(handle, metric, data, static_cast<uint32_t>(size.QuadPart));
    GlobalUnlock(block);
    return hr;
}

int32_t KtGetMetricStringEx(HKTMETRIC handle, int32_t metric, WCHAR* buffer, int32_t size, const WCHAR* fallback,
                            int32_t allow_empty) noexcept {
    return ReadText(handle, metric, REG_SZ, buffer, size, fallback, allow_empty);
}

HRESULT KtSetMetricString(HKTMETRIC handle, int32_t metric, const WCHAR* text) noexcept {
    if (!text) return E_FAIL;
    const size_t size = WStringView(text).size() + 1;
    if (size > UINT32_MAX / kUnit) return E_FAIL;
    return Store(handle, metric, REG_SZ, text, static_cast<uint32_t>(size) * kUnit);
}

int32_t KtGetMetricMultiStringEx(HKTMETRIC handle, int32_t metric, WCHAR* buffer, int32_t size, const WCHAR* fallback,
                                 int32_t allow_empty) noexcept {
    return ReadText(handle, metric, REG_MULTI_SZ, buffer, size, fallback, allow_empty);
}

HRESULT KtSetMetricMultiString(HKTMETRIC handle, int32_t metric, const WCHAR* data, uint32_t size) noexcept {
    if (size > UINT32_MAX / kUnit) return E_FAIL;
    return Store(handle, metric, REG_MULTI_SZ, data, size * kUnit);
}

int32_t KtDoesMetricExist(HKTMETRIC handle, int32_t metric, uint32_t type) noexcept {
    const HKEY key = MetricKey(handle);
    return key && Query(key, ValueName(metric, LetterOf(type)).Text(), nullptr, 0).Is(type) ? 0 : 1;
}

HRESULT KtDeleteMetric(HKTMETRIC handle, int32_t metric, uint32_t type) noexcept {
    return DeleteValue(handle, ValueName(metric, LetterOf(type)).Text());
}

HRESULT KtDeleteMetricUsingName(HKTMETRIC handle, const WCHAR* name, uint32_t) noexcept {
    return name ? DeleteValue(handle, name) : E_FAIL;
}

int32_t KtMetricGetName(int32_t metric, uint32_t type, WCHAR* buffer) noexcept {
    if (!buffer) return 0;
    const ValueName name(metric, type == REG_DWORD ? WStringView(W("D")) : LetterOf(type));
    return clipfio::CopyText(buffer, ValueName::kSize, name.Text());
}
