// Memory named across processes.
//
// A host hands over a token in place of a pointer: it names memory of the process that owns it, so that the module may
// run in another one. Neither class locks: an object belongs to the thread that made it, and both sides keep the
// token's memory alive until it is disposed.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"

inline constexpr uint32_t kKtMemoryPlain = 0;
inline constexpr uint32_t kKtMemoryMapping = 1;

struct _ktmemorytoken {
    HANDLE mapping;       // kKtMemoryMapping: the mapping, a handle of the owner process
    uint64_t address;     // kKtMemoryPlain: base address in the owner process
    uint32_t size;        // bytes of data
    uint32_t mappedSize;  // bytes of the mapping; informative
    int32_t offset;       // from the base to the data
    uint32_t reserved;
    uint32_t type;  // kKtMemory*
    uint32_t processId;
};
static_assert(sizeof(_ktmemorytoken) == 40);
static_assert(offsetof(_ktmemorytoken, address) == 8);
static_assert(offsetof(_ktmemorytoken, size) == 16);
static_assert(offsetof(_ktmemorytoken, mappedSize) == 20);
static_assert(offsetof(_ktmemorytoken, offset) == 24);
static_assert(offsetof(_ktmemorytoken, type) == 32);
static_assert(offsetof(_ktmemorytoken, processId) == 36);

// Access flags of both classes: the values of FILE_MAP_WRITE and FILE_MAP_READ. Neither bit means both.
inline constexpr uint32_t kKtTokenWrite = 2;
inline constexpr uint32_t kKtTokenRead = 4;

// A token's memory, usable in this process until Dispose. Memory of this process is used in place; a mapping is viewed;
// other plain memory is copied, and goes back to its owner on Dispose when write access was asked for.
class KT_EXPORT CMappingOfKtMemoryToken {
  public:
    CMappingOfKtMemoryToken(const _ktmemorytoken& token, uint32_t access) noexcept;
    ~CMappingOfKtMemoryToken() noexcept;
    // A plain copy of all fields: both objects then name one view or block, which only one of them may dispose. What
    // the object held before is not let go.
    CMappingOfKtMemoryToken(const CMappingOfKtMemoryToken&) = delete;
    CMappingOfKtMemoryToken& operator=(const CMappingOfKtMemoryToken&) noexcept;

    void Dispose() noexcept;
    void Close() noexcept;

    // S_OK with the data, or E_FAIL with null.
    HRESULT GetPointer(void** out) noexcept;
    void* Pointer() noexcept;     // null when the token cannot be used
    int32_t DataSize() noexcept;  // bytes, or -1 when the token cannot be used

    // For memory that was not filled to its end: what lies behind the first `bytes` does not go back to the owner, who
    // would else find it blank.
    void KeepFirst(uint32_t bytes) noexcept {
        if (bytes < token_.size) token_.size = bytes;
    }

  private:
    void MapView(uint32_t access) noexcept;
    void CopyIn(uint32_t access) noexcept;
    uint64_t DataAddress() const noexcept;

    _ktmemorytoken token_;
    void* pointer_;
    void* view_;
    HANDLE duplicate_;
    bool is_mapped_;
    bool is_copy_;
    bool failed_;
    bool write_back_;
};

// The other side: makes of a piece of memory a token that a process can use which cannot reach the memory directly.
// With read access the data is brought in at construction, with write access it is brought back at destruction.
class KT_EXPORT COutOfProcessMemoryToken {
  public:
    // `direct_access` not 0: the other process can reach plain memory as it is.
    COutOfProcessMemoryToken(_ktmemorytoken& token, uint32_t access, int32_t direct_access) noexcept;
    ~COutOfProcessMemoryToken() noexcept;
    // A plain copy of all fields, as above.
    COutOfProcessMemoryToken(const COutOfProcessMemoryToken&) = delete;
    COutOfProcessMemoryToken& operator=(const COutOfProcessMemoryToken&) noexcept;

    // S_OK, or E_FAIL when no usable token could be made; `out` is then untouched.
    HRESULT GetMemoryToken(_ktmemorytoken& out) noexcept;

  private:
    void FreeMapping() noexcept;

    _ktmemorytoken source_;
    _ktmemorytoken shared_;
    int32_t owns_shared_;
    int32_t failed_;
    uint32_t access_;
};

// Makes a mapping of `size` bytes and the token of it, for memory that other processes are to use. E_OUTOFMEMORY when
// the mapping or its view cannot be made. Freed by FreeMappedToken, in the process that made it.
KT_API HRESULT CreateMappedToken(_ktmemorytoken& token, uint32_t size, int32_t zero_fill) noexcept;
// S_OK for a mapped token, else E_INVALIDARG. The token is zeroed in both cases.
KT_API HRESULT FreeMappedToken(_ktmemorytoken& token) noexcept;
