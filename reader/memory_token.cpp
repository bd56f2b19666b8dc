#include "reader/memory_token.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/process.h"
#include "platform/scoped.h"

namespace {

constexpr uint32_t kBothWays = kKtTokenWrite | kKtTokenRead;
constexpr DWORD kForeignMemory = PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE;

uint32_t AccessBits(uint32_t access) noexcept { return access & kBothWays ? access & kBothWays : kBothWays; }

// Where a token's data begins in its owner. The offset is signed and the sum wraps, as addresses do.
uint64_t AddressOf(const _ktmemorytoken& token) noexcept {
    return token.address + static_cast<uint64_t>(static_cast<int64_t>(token.offset));
}

void* AsPointer(uint64_t address) noexcept { return reinterpret_cast<void*>(static_cast<uintptr_t>(address)); }

HANDLE MakeMapping(uint32_t size) noexcept {
    const HANDLE mapping = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, nullptr);
    return mapping ? mapping : INVALID_HANDLE_VALUE;
}

// Makes a mapping with its view in `token`, of this process. False when either cannot be made; nothing is then held.
bool MakeMappedToken(_ktmemorytoken& token, uint32_t size) noexcept {
    token = {};
    token.size = size;
    token.mappedSize = size;
    token.type = kKtMemoryMapping;
    token.processId = GetCurrentProcessId();
    token.mapping = MakeMapping(size);
    if (token.mapping == INVALID_HANDLE_VALUE) return false;
    void* view = MapViewOfFile(token.mapping, FILE_MAP_WRITE | FILE_MAP_READ, 0, 0, size);
    if (!view) {
        CloseHandle(std::exchange(token.mapping, INVALID_HANDLE_VALUE));
        return false;
    }
    token.address = reinterpret_cast<uintptr_t>(view);
    return true;
}

void FreeView(const _ktmemorytoken& token) noexcept {
    if (token.address) UnmapViewOfFile(AsPointer(token.address));
    if (token.mapping && token.mapping != INVALID_HANDLE_VALUE) CloseHandle(token.mapping);
}

bool CopyTokenData(const _ktmemorytoken& from, const _ktmemorytoken& to) noexcept {
    CMappingOfKtMemoryToken in(from, kKtTokenRead);
    CMappingOfKtMemoryToken out(to, kKtTokenWrite);
    if (!in.Pointer() || !out.Pointer() || from.size != to.size) return false;
    std::memcpy(out.Pointer(), in.Pointer(), from.size);
    return true;
}

}  // namespace

CMappingOfKtMemoryToken::CMappingOfKtMemoryToken(const _ktmemorytoken& token, uint32_t access) noexcept
    : token_(token),
      pointer_(nullptr),
      view_(nullptr),
      duplicate_(INVALID_HANDLE_VALUE),
      is_mapped_(false),
      is_copy_(false),
      failed_(true),
      write_back_(false) {
    if (token_.processId == GetCurrentProcessId()) {
        pointer_ = AsPointer(AddressOf(token_));
        failed_ = false;
    } else if (token_.type == kKtMemoryMapping) {
        MapView(AccessBits(access));
    } else if (token_.type == kKtMemoryPlain) {
        CopyIn(AccessBits(access));
    }
}

CMappingOfKtMemoryToken::~CMappingOfKtMemoryToken() noexcept { Dispose(); }

CMappingOfKtMemoryToken& CMappingOfKtMemoryToken::operator=(const CMappingOfKtMemoryToken&) noexcept = default;

void CMappingOfKtMemoryToken::MapView(uint32_t access) noexcept {
    if (token_.offset < 0) return;  // the data does not lie in the mapping
    const uint64_t end = static_cast<uint64_t>(token_.size) + static_cast<uint32_t>(token_.offset);
    const platform::ScopedHandle owner(OpenProcess(PROCESS_DUP_HANDLE, FALSE, token_.processId));
    if (!owner) return;
    if (!DuplicateHandle(owner.Get(), token_.mapping, GetCurrentProcess(), &duplicate_, 0, FALSE,
                         DUPLICATE_SAME_ACCESS)) {
        duplicate_ = INVALID_HANDLE_VALUE;
        return;
    }
    view_ = MapViewOfFile(duplicate_, access, 0, 0, static_cast<SIZE_T>(end));
    if (!view_) {
        CloseHandle(std::exchange(duplicate_, INVALID_HANDLE_VALUE));
        return;
    }
    pointer_ = static_cast<uint8_t*>(view_) + token_.offset;
    is_mapped_ = true;
    failed_ = false;
}

void CMappingOfKtMemoryToken::CopyIn(uint32_t access) noexcept {
    const bool write_back = (access & kKtTokenWrite) != 0;
    void* block = nullptr;
    if (!(access & kKtTokenRead)) {
        block = std::calloc(1, token_.size ? token_.size : 1);
    } else {
        const platform::ScopedHandle owner(OpenProcess(kForeignMemory, FALSE, token_.processId));
        if (!owner) return;
        block = std::malloc(token_.size ? token_.size : 1);
        SIZE_T read = 0;
        if (block && (!ReadProcessMemory(owner.Get(), AsPointer(DataAddress()), block, token_.size, &read) ||
                      read != token_.size)) {
            std::free(std::exchange(block, nullptr));
        }
    }
    if (!block) return;
    pointer_ = block;
    is_copy_ = true;
    write_back_ = write_back;
    failed_ = false;
}

uint64_t CMappingOfKtMemoryToken::DataAddress() const noexcept { return AddressOf(token_); }

void CMappingOfKtMemoryToken::Dispose() noexcept {
    if (!failed_ && is_mapped_) {
        if (view_) UnmapViewOfFile(std::exchange(view_, nullptr));
        if (duplicate_ != INVALID_HANDLE_VALUE) CloseHandle(std::exchange(duplicate_, INVALID_HANDLE_VALUE));
    } else if (!failed_ && is_copy_ && pointer_) {
        if (write_back_ && token_.size > 0) {
            const platform::ScopedHandle owner(OpenProcess(kForeignMemory, FALSE, token_.processId));
            SIZE_T written = 0;
            if (owner) WriteProcessMemory(owner.Get(), AsPointer(DataAddress()), pointer_, token_.size, &written);
        }
        std::free(pointer_);
    }
    pointer_ = nullptr;
}

void CMappingOfKtMemoryToken::Close() noexcept { Dispose(); }

HRESULT CMappingOfKtMemoryToken::GetPointer(void** out) noexcept {
    if (!out) return E_POINTER;
    *out = failed_ ? nullptr : pointer_;
    return failed_ ? E_FAIL : S_OK;
}

void* CMappingOfKtMemoryToken::Pointer() noexcept { return failed_ ? nullptr : pointer_; }

int32_t CMappingOfKtMemoryToken::DataSize() noexcept { return failed_ ? -1 : static_cast<int32_t>(token_.size); }

COutOfProcessMemoryToken::COutOfProcessMemoryToken(_ktmemorytoken& token, uint32_t access,
                                                   int32_t direct_access) noexcept
    : source_(token), shared_{}, owns_shared_(1), failed_(1), access_(AccessBits(access)) {
    constexpr uint64_t kHighest32 = 0xFFFFFFFF;
    const bool reachable = token.type == kKtMemoryMapping ||
                           (token.type == kKtMemoryPlain && (direct_access || AddressOf(token) <= kHighest32));
    if (reachable) {
        shared_ = source_;
        owns_shared_ = 0;
        failed_ = 0;
        return;
    }
    const bool made = MakeMappedToken(shared_, source_.size);
    failed_ = made && (!(access_ & kKtTokenRead) || CopyTokenData(source_, shared_)) ? 0 : 1;
    if (failed_) FreeMapping();
}

COutOfProcessMemoryToken::~COutOfProcessMemoryToken() noexcept {
    if (!owns_shared_ || failed_) return;
    if (access_ & kKtTokenWrite) failed_ = CopyTokenData(shared_, source_) ? 0 : 1;
    FreeMapping();
}

COutOfProcessMemoryToken& COutOfProcessMemoryToken::operator=(const COutOfProcessMemoryToken&) noexcept = default;

void COutOfProcessMemoryToken::FreeMapping() noexcept {
    FreeView(shared_);
    shared_ = {};
}

HRESULT COutOfProcessMemoryToken::GetMemoryToken(_ktmemorytoken& out) noexcept {
    if (failed_) return E_FAIL;
    out = shared_;
    return S_OK;
}

HRESULT CreateMappedToken(_ktmemorytoken& token, uint32_t size, int32_t zero_fill) noexcept {
    if (!MakeMappedToken(token, size)) return E_OUTOFMEMORY;
    if (zero_fill) std::memset(AsPointer(token.address), 0, size);
    return S_OK;
}

HRESULT FreeMappedToken(_ktmemorytoken& token) noexcept {
    const _ktmemorytoken freed = std::exchange(token, _ktmemorytoken{});
    if (freed.type != kKtMemoryMapping) return E_INVALIDARG;
    FreeView(freed);
    return S_OK;
}
