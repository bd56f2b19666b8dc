// What the tests of the reader share: the reader over the fake decoder, as a host drives it.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "platform/scoped.h"
#include "reader/host_interfaces.h"
#include "tests/reader/fake_decoder.h"

namespace reader_tests {

using platform::ComPtr;

// Brings the reader up over the fake decoder and takes it down again. In the unit tests the program is the module; in
// the tests of the built module the system's loader has done it, and these do nothing.
bool AttachReader();
void DetachReader();

fake_decoder::State& Decoder();

// A path that the fake decoder opens, though there is no file.
inline constexpr WCHAR kNoFile[] = W("C:\\no such folder\\clip.r3d");

inline _ktmemorytoken TokenOf(void* memory, std::size_t bytes) {
    _ktmemorytoken token = {};
    token.address = reinterpret_cast<uintptr_t>(memory);
    token.size = static_cast<uint32_t>(bytes);
    token.type = kKtMemoryPlain;
    token.processId = GetCurrentProcessId();
    return token;
}

// Tokens of no memory that anything could be written to.
inline std::vector<_ktmemorytoken> UnusableTokens(const _ktmemorytoken& token) {
    std::vector<_ktmemorytoken> tokens(4, token);
    tokens[0].size = 0, tokens[1].size = 0x80000000, tokens[2].size = 0xFFFFFFFF, tokens[3].address = 0;
    return tokens;
}

inline _ktframerequest Request(uint32_t bits, double scale = 1.0, uint32_t quality = 4, double gamma = 0.0) {
    _ktframerequest request = {};
    request.bitsPerPixel = bits;
    request.quality = quality;
    request.scale = scale;
    request.gamma = gamma;
    return request;
}

template <class Interface>
ComPtr<Interface> StreamOf(IKtReadFile* file, int32_t stream) {
    ComPtr<Interface> out;
    EXPECT_EQ(file->GetStream(out.OutVoid(), 0, stream), S_OK);
    return out;
}

inline ComPtr<IKtReadVideoStream> VideoOf(IKtReadFile* file) { return StreamOf<IKtReadVideoStream>(file, 0); }
inline ComPtr<IKtReadAudioStream> AudioOf(IKtReadFile* file) { return StreamOf<IKtReadAudioStream>(file, 1); }

// What an object's getter gives, which must not fail.
template <class Interface, class Declaring, class Value>
Value Got(const ComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Declaring::*get)(Value*)) {
    Value value;
    std::memset(static_cast<void*>(&value), 0x55, sizeof value);
    EXPECT_EQ((object.Get()->*get)(&value), S_OK);
    return value;
}

// The record of a stream's format: a bitmap's, or that of sound.
template <class Record>
Record FormatIn(const _ktstreaminfo& info) {
    Record record;
    std::memcpy(static_cast<void*>(&record), info.format, sizeof record);
    return record;
}

// Size, width, height, planes, bits, compression and bytes of the picture.
inline std::vector<int64_t> Facts(const BITMAPINFOHEADER& b) {
    return {b.biSize, b.biWidth, b.biHeight, b.biPlanes, b.biBitCount, b.biCompression, b.biSizeImage};
}
// Size, rate, aspect and gamma.
inline std::vector<double> Facts(const _ktframeformat& f) {
    return {static_cast<double>(f.size), f.frameRate, f.pixelAspect, f.gamma};
}

class ReaderTest : public testing::Test {
  protected:
    void SetUp() override {
        Decoder().script = {};
        Decoder().misuses = 0;
        ASSERT_TRUE(AttachReader());
        Decoder().script.events.clear();
        file_class_ = NewFileClass();
        ASSERT_TRUE(file_class_);
    }
    void TearDown() override {
        file_class_.Reset();
        EXPECT_EQ(Decoder().live_clips, 0);
        EXPECT_EQ(Decoder().misuses, 0);
        DetachReader();
    }

    static ComPtr<IKtReadFileClass> NewFileClass();
    static fake_decoder::Script& Told() { return Decoder().script; }
    // In order: not named, measured and closed, open.
    ComPtr<IKtReadFile> EmptyFile() const;
    ComPtr<IKtReadFile> MeasuredFile(const WCHAR* path = kNoFile) const;
    ComPtr<IKtReadFile> OpenFile(const WCHAR* path = kNoFile) const;

    ComPtr<IKtReadFileClass> file_class_;
};

}  // namespace reader_tests
