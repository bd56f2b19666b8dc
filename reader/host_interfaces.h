// The interfaces between the host and the module. The order of the operations is the contract: nothing may be inserted,
// removed or moved. Operations return an HRESULT unless they say otherwise.
//
// Ownership is COM's: an interface that is handed out carries a reference for the caller. Beyond that a parent outlives
// its children: the file class its files, a file its streams and its metadata; a child holds no reference to its
// parent. Text buffers are the caller's, with sizes in characters, terminator included. Times are in units of 100
// nanoseconds.
#pragma once

#include <cstdint>

#include "platform/base.h"
#include "platform/com.h"
#include "reader/host_records.h"
#include "reader/memory_token.h"
#include "settings/properties_sink.h"

struct IKtReadFile;

inline constexpr CLSID CLSID_KtReadFileClass = {
    0xE514B38B, 0x3161, 0x4F48, {0xBA, 0x6A, 0x00, 0xAA, 0x00, 0x6B, 0xA2, 0xBA}};
inline constexpr CLSID CLSID_KtUnsharedFIOPluginInfo = {
    0xF6E48972, 0x515B, 0x4A5E, {0xB3, 0x16, 0xA4, 0x6A, 0x03, 0xC9, 0xC3, 0xC0}};
inline constexpr IID IID_IKtReadFileClass = {
    0xEEF647F1, 0x02AB, 0x4FCD, {0xB0, 0x6E, 0xA5, 0x01, 0xAE, 0xFF, 0x2D, 0x34}};
inline constexpr IID IID_IKtReadFile = {0x08458FE3, 0x09B8, 0x4C25, {0x8B, 0x42, 0xFA, 0x7A, 0x46, 0x0D, 0xFC, 0x47}};
inline constexpr IID IID_IKtFileIOMediaProperties = {
    0xF665A98B, 0xADE4, 0x42CD, {0xAB, 0xB9, 0xC6, 0x97, 0x42, 0xC7, 0xE6, 0x73}};
inline constexpr IID IID_IKtReadStream = {0x60FD1C41, 0x7825, 0x11D3, {0xA4, 0x83, 0x00, 0x10, 0x5A, 0x24, 0xAA, 0x37}};
inline constexpr IID IID_IKtReadVideoStream = {
    0xD8E86F3C, 0x4C2F, 0x403C, {0xAC, 0x5B, 0x43, 0xF0, 0x2A, 0xF1, 0xB4, 0x27}};
inline constexpr IID IID_IKtReadAudioStream = {
    0x6E362EA8, 0xF473, 0x4167, {0xB8, 0x5F, 0x07, 0x4E, 0xAB, 0x32, 0x90, 0xCE}};
inline constexpr IID IID_IKtReadMeta = {0x001420E1, 0x938C, 0x11D3, {0xA4, 0x83, 0x00, 0x10, 0x5A, 0x24, 0xAA, 0x37}};
inline constexpr IID IID_IKtUnsharedFIOPluginInfo = {
    0x404E18A7, 0xC288, 0x4499, {0x8E, 0x42, 0x33, 0xFE, 0xCF, 0xA1, 0x64, 0x2C}};

// What the host gives the file class as its site. The class takes over the caller's reference.
struct IKtHostSite : IUnknown {
    // `lcid` comes with the module's locale and may be overwritten with the host's.
    virtual HRESULT STDMETHODCALLTYPE GetLocale(uint32_t* lcid, uint32_t reserved) = 0;
};

// The file type: describes itself, recognises clips and makes file objects. Holds no clip. No lock: set index and site
// before several threads use it.
struct IKtReadFileClass : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE SetClassIndex(uint32_t index) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClassIndex(uint32_t* out) = 0;  // 0xFFFFFFFF until one is set
    virtual HRESULT STDMETHODCALLTYPE SetSite(IKtHostSite* site) = 0;    // null takes the site away
    virtual HRESULT STDMETHODCALLTYPE GetSite(IKtHostSite** out) = 0;    // no reference is added
    virtual HRESULT STDMETHODCALLTYPE GetFormatId(GUID* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClassFlags(uint32_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetClassOptions(uint32_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed10() = 0;
    // One BSTR for each id, freed by the caller; the empty text for an id that has none. On E_OUTOFMEMORY those made so
    // far are in `out`.
    virtual HRESULT STDMETHODCALLTYPE GetClassStrings(const uint32_t* ids, uint32_t count, BSTR* out) = 0;
    // S_OK when the bytes begin a clip, else E_FAIL. At least 8 bytes are needed. The handle is not looked at.
    virtual HRESULT STDMETHODCALLTYPE CheckHeader(HANDLE file, const void* bytes, uint32_t count,
                                                  const void* reserved) = 0;
    virtual HRESULT STDMETHODCALLTYPE CheckFile(const WCHAR* path) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed14() = 0;
    // A file object with its name set, opened when bit 0 of `flags` is set. Without that bit a name that cannot be
    // opened still gives S_OK and an object that is not open.
    virtual HRESULT STDMETHODCALLTYPE CreateNamed(IKtReadFile** out, uint32_t reserved1, uint32_t reserved2,
                                                  const WCHAR* path, uint32_t flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE NoOperation16() = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowAbout(HWND parent) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed18() = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateFile(IKtReadFile** out) = 0;
};

// Keys of the text and value operations of a file.
inline constexpr uint32_t kKtFileTextType = 1;
inline constexpr uint32_t kKtFileTextDataRate = 2;  // bytes per second; the text comes with S_FALSE
inline constexpr uint32_t kKtStreamTextType = 1;
inline constexpr uint32_t kKtStreamTextFormat = 2;
inline constexpr uint32_t kKtStreamTextDataRate = 3;
inline constexpr uint32_t kKtFileValueDataRate = 1;     // unsigned 32-bit, bytes per second
inline constexpr uint32_t kKtStreamValueCode = 1;       // four characters
inline constexpr uint32_t kKtStreamValueDataRate = 2;   // unsigned 32-bit, bytes per second
inline constexpr uint32_t kKtStreamValueFrameRate = 6;  // double, frames per second

// One clip. All operations but those of IUnknown and the last three hold the object's lock.
struct IKtReadFile : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetFileClass(IKtReadFileClass** out) = 0;
    // S_FALSE and nothing written for a key that is not known.
    virtual HRESULT STDMETHODCALLTYPE GetFileText(WCHAR* buffer, int32_t size, uint32_t key) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamText(WCHAR* buffer, int32_t size, int32_t stream, uint32_t key) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFileValue(void* out, uint32_t bytes, uint32_t key) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamValue(void* out, uint32_t bytes, int32_t stream, uint32_t key) = 0;
    // A second, independent object on the same path, closed, with one reference for the caller. Reading frames in
    // parallel takes several file objects.
    virtual HRESULT STDMETHODCALLTYPE Duplicate(IKtReadFile** out) = 0;
    virtual HRESULT STDMETHODCALLTYPE Close() = 0;
    virtual HRESULT STDMETHODCALLTYPE IsOpen() = 0;  // S_OK or S_FALSE
    virtual HRESULT STDMETHODCALLTYPE Open(uint32_t reserved1, uint32_t reserved2) = 0;
    // Measures the clip: opens it, takes its formats and lengths, and closes it again. A name that could not be opened
    // stays set, and setting the same name again does nothing.
    virtual HRESULT STDMETHODCALLTYPE SetFileName(const WCHAR* path) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFileName(WCHAR* buffer, int32_t size) = 0;  // E_FAIL when it does not fit
    virtual HRESULT STDMETHODCALLTYPE GetDuration(int64_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamCount(int32_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetItemCount(int32_t* out) = 0;
    // Each record's `size` is read first; the larger of it and 184 bytes is zeroed and filled.
    virtual HRESULT STDMETHODCALLTYPE GetStreamInfo(_ktstreaminfo* records, int32_t first, int32_t count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamKind(int32_t stream, uint32_t* kind, uint32_t* second) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStreamProperty(int32_t stream, uint32_t key, uint32_t* out) = 0;
    // IKtReadVideoStream for stream 0, IKtReadAudioStream for stream 1: the same object at each call.
    virtual HRESULT STDMETHODCALLTYPE GetStream(void** out, uint64_t reserved, int32_t stream) = 0;
    virtual HRESULT STDMETHODCALLTYPE NoOperation21() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMeta(void** out) = 0;  // IKtReadMeta
    virtual HRESULT STDMETHODCALLTYPE NotServed23() = 0;
};

// The host's editing pass over one or several clips: BeginProperties once, GatherProperties for each clip,
// ShowPropertiesDialog once, ApplyProperties for each clip. No lock: for the host's user interface thread.
struct IKtFileIOMediaProperties : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE BeginProperties() = 0;
    // A stream receives the clip's present look in the form of a decode-properties file.
    virtual HRESULT STDMETHODCALLTYPE GatherProperties(IStream* snapshot) = 0;
    // `ok` becomes 1 when the user accepted. S_FALSE when the dialog has already run in this pass; `ok` is then
    // untouched.
    virtual HRESULT STDMETHODCALLTYPE ShowPropertiesDialog(HWND parent, uint64_t reserved, IKtPropertiesSink* sink,
                                                           uint32_t* ok) = 0;
    // Writes the clip's decode-properties file, from the edited settings or from a snapshot; or deletes it when the
    // user went back to the clip's own look.
    virtual HRESULT STDMETHODCALLTYPE ApplyProperties(IStream* snapshot) = 0;
};

struct IKtReadStream : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetFileClass(IKtReadFileClass** out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFile(IKtReadFile** out) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved5() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetKind(uint32_t* kind, uint32_t* second, uint32_t* third) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDuration(int64_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetStartTime(int64_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetUserValue(uint32_t value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Close() = 0;  // lets the private buffer go; a further read makes a new one
};

struct IKtReadVideoStream : IKtReadStream {
    virtual HRESULT STDMETHODCALLTYPE GetLength(uint64_t* out) = 0;  // frames
    virtual HRESULT STDMETHODCALLTYPE GetFormat(_ktstreaminfo* info) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNativeFormat(_ktstreaminfo* info) = 0;
    // Only chooses what GetFormat reports; a frame's format comes from its request.
    virtual HRESULT STDMETHODCALLTYPE SetFormat(const _ktstreaminfo* info) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFrameSize(uint64_t frame, const _ktframerequest* request, uint32_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFrameInfo(uint64_t frame, const _ktframerequest* request,
                                                   _ktframeinfo* info) = 0;
    // Decodes on the calling thread and returns when the frame is in the token's memory. `bytes` is untouched on
    // failure.
    virtual HRESULT STDMETHODCALLTYPE ReadFrame(uint64_t frame, const _ktframerequest* request,
                                                const _ktmemorytoken* destination, _ktframeinfo* info,
                                                uint32_t* bytes) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed18() = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed19() = 0;
    virtual HRESULT STDMETHODCALLTYPE SetRatio(double ratio) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetRatio(double* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFrameRate(double* out) = 0;
};

struct IKtReadAudioStream : IKtReadStream {
    virtual HRESULT STDMETHODCALLTYPE GetLength(uint64_t* out) = 0;  // samples per channel
    virtual HRESULT STDMETHODCALLTYPE GetBlockAlign(uint32_t* out) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFormat(_ktstreaminfo* info) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNativeFormat(_ktstreaminfo* info) = 0;
    virtual HRESULT STDMETHODCALLTYPE CheckFormat(const _ktstreaminfo* info) = 0;
    // Writes up to `count` samples per channel, as interleaved 32-bit floats. S_FALSE when the clip gave fewer.
    virtual HRESULT STDMETHODCALLTYPE ReadSamples(int64_t first, const _ktmemorytoken* destination, int32_t count,
                                                  int32_t* read) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed17() = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed18() = 0;
};

// Keys of IKtReadMeta::GetValue: the timecode of the first and of the last frame, as a decimal count of 100-nanosecond
// units.
inline constexpr uint32_t kKtMetaFirstTimecode = 0x444F4354;  // "TCOD"
inline constexpr uint32_t kKtMetaLastTimecode = 0x4F444354;   // "TCDO"

struct IKtReadMeta : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE NotServed3() = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed4() = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed5() = 0;
    // S_FALSE for a key that is not known; E_UNEXPECTED when no clip is loaded.
    virtual HRESULT STDMETHODCALLTYPE GetValue(uint32_t key, WCHAR* buffer, int32_t size) = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServed7() = 0;
};

struct IKtReadGenericMeta : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE NotServedGeneric3() = 0;
    virtual HRESULT STDMETHODCALLTYPE NotServedGeneric4() = 0;
};

// Describes the file format to the host.
struct IKtUnsharedFIOPluginInfo : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE PrepareFormats() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFormatCount(uint32_t* out) = 0;
    // Null outs are skipped. An index other than 0 gives E_INVALIDARG and writes nothing.
    virtual HRESULT STDMETHODCALLTYPE GetFormatInfo(uint32_t index, GUID* id, WCHAR* name, int32_t size,
                                                    int32_t* number1, int32_t* number2, int32_t* number3,
                                                    int32_t* number4, int32_t* number5, int32_t* number6,
                                                    uint64_t reserved, int32_t* last) = 0;
};
