// Every slot of every interface between host and module, called by its number in the object's table with plain function
// pointers, and the fields of every record by their byte offsets: what a host sees that was built without our headers.
#include <cstring>

#include "reader/plugin_exports.h"
#include "support/temp_file.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

template <class Result = HRESULT, class... Arguments>
Result Call(void* object, int slot, Arguments... arguments) {
    using Operation = Result(STDMETHODCALLTYPE*)(void*, Arguments...);
    return reinterpret_cast<Operation>((*static_cast<void***>(object))[slot])(object, arguments...);
}

template <class Value>
Value At(const void* record, std::size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof value);
    return value;
}

class RawSlots : public ReaderTest {
  protected:
    void SetUp() override {
        ReaderTest::SetUp();
        Told().clip.width = 64;
        Told().clip.height = 48;
        void* file = nullptr;
        ASSERT_EQ(Call(file_class_.Get(), 19, &file), S_OK);
        file_ = file;
        ASSERT_EQ(Call(file_, 12, path_.Path()), S_OK);
        ASSERT_EQ(Call(file_, 11, 0x80000000u, 1u), S_OK);
    }
    void TearDown() override {
        EXPECT_EQ(Call<ULONG>(file_, 2), 0u);
        ReaderTest::TearDown();
    }
    static void ExpectCounted(void* object, ULONG now) {
        EXPECT_EQ(Call<ULONG>(object, 1), now + 1);
        EXPECT_EQ(Call<ULONG>(object, 2), now);
    }
    // The id gives the object, and the unknown one is refused.
    static void ExpectInterfaces(void* object, std::initializer_list<IID> known, bool nulls) {
        const IID unknown = {0x12345678, 1, 2, {3}};
        for (const IID& id : known) {
            void* out = nullptr;
            EXPECT_EQ(Call(object, 0, &id, &out), S_OK);
            EXPECT_EQ(out, object);
            Call<ULONG>(out, 2);
        }
        void* out = object;
        EXPECT_EQ(Call(object, 0, &unknown, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nulls ? nullptr : object);
    }

    const support::TempFile path_{".r3d"};
    void* file_ = nullptr;
};

TEST_F(RawSlots, ClassFactory) {
    void* factory = nullptr;
    ASSERT_EQ(DllGetClassObject(CLSID_KtUnsharedFIOPluginInfo, IID_IClassFactory, &factory), S_OK);
    ExpectInterfaces(factory, {IID_IClassFactory, IID_IUnknown}, true);
    ExpectCounted(factory, 1);
    void* info = nullptr;
    EXPECT_EQ(Call(factory, 3, nullptr, &IID_IKtUnsharedFIOPluginInfo, &info), S_OK);
    EXPECT_EQ(Call(factory, 4, 1), S_OK);
    EXPECT_EQ(Call(factory, 4, 0), S_OK);
    EXPECT_EQ(Call<ULONG>(factory, 2), 0u);

    ExpectInterfaces(info, {IID_IKtUnsharedFIOPluginInfo, IID_IUnknown}, false);
    ExpectCounted(info, 1);
    EXPECT_EQ(Call(info, 3), S_OK);
    uint32_t count = 9;
    EXPECT_EQ(Call(info, 4, &count), S_OK);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(Call(info, 4, nullptr), E_INVALIDARG);
    uint8_t id[16];
    WCHAR name[20];
    int32_t numbers[7] = {9, 9, 9, 9, 9, 9, 9};
    int32_t* const n = numbers;
    EXPECT_EQ(Call(info, 5, 0u, id, name, 20, n, n + 1, n + 2, n + 3, n + 4, n + 5, uint64_t{0}, n + 6), S_OK);
    const uint8_t kId[] = {0x8B, 0xB3, 0x14, 0xE5, 0x61, 0x31, 0x48, 0x4F,
                           0xBA, 0x6A, 0x00, 0xAA, 0x00, 0x6B, 0xA2, 0xBA};
    EXPECT_EQ(std::memcmp(id, kId, 16), 0);
    EXPECT_EQ(WStringView(name), W("Red R3D Format"));
    const int32_t kNumbers[] = {16, 3, -1, -1, -1, -1, 2};
    EXPECT_EQ(std::memcmp(numbers, kNumbers, sizeof numbers), 0);
    int32_t* const none = nullptr;
    EXPECT_EQ(Call(info, 5, 0u, nullptr, nullptr, 0, none, none, none, none, none, none, uint64_t{0}, none), S_OK);
    numbers[0] = 77;
    EXPECT_EQ(Call(info, 5, 1u, id, name, 20, n, n, n, n, n, n, uint64_t{0}, n), E_INVALIDARG);
    EXPECT_EQ(numbers[0], 77);
    EXPECT_EQ(Call<ULONG>(info, 2), 0u);
}

TEST_F(RawSlots, FileClass) {
    void* const object = file_class_.Get();
    ExpectInterfaces(object, {IID_IKtReadFileClass, IID_IUnknown}, false);
    ExpectCounted(object, 1);
    uint32_t number = 9;
    EXPECT_EQ(Call(object, 4, &number), S_OK);
    EXPECT_EQ(number, 0xFFFFFFFFu);
    EXPECT_EQ(Call(object, 3, 5u), S_OK);
    EXPECT_EQ(Call(object, 4, &number), S_OK);
    EXPECT_EQ(number, 5u);
    EXPECT_EQ(Call(object, 5, nullptr), S_OK);
    void* out = object;
    EXPECT_EQ(Call(object, 6, &out), S_OK);
    EXPECT_EQ(out, nullptr);
    uint8_t id[16];
    EXPECT_EQ(Call(object, 7, id), S_OK);
    const uint8_t kId[] = {0xC4, 0xE5, 0x99, 0xBF, 0x74, 0xF8, 0x4A, 0x49,
                           0x9C, 0xC9, 0x80, 0x54, 0x32, 0x6F, 0x58, 0x2B};
    EXPECT_EQ(std::memcmp(id, kId, 16), 0);
    EXPECT_EQ(Call(object, 8, &number), S_OK);
    EXPECT_EQ(number, 3u);
    EXPECT_EQ(Call(object, 9, &number), S_OK);
    EXPECT_EQ(number, 0u);
    BSTR text = nullptr;
    const uint32_t string_id = 4;
    EXPECT_EQ(Call(object, 11, &string_id, 1u, &text), S_OK);
    EXPECT_EQ(WStringView(text), W("*.r3d"));
    SysFreeString(text);
    EXPECT_EQ(Call(object, 12, nullptr, "....RED2", 8u, nullptr), S_OK);
    EXPECT_EQ(Call(object, 13, W("C:\\no such file")), E_FAIL);
    EXPECT_EQ(Call(object, 15, &out, 0u, 0u, kNoFile, 0u), S_OK);
    EXPECT_EQ(Call<ULONG>(out, 2), 0u);
    EXPECT_EQ(Call(object, 16), S_OK);
    EXPECT_EQ(Call(object, 17, nullptr), S_OK);
    EXPECT_EQ(Call(object, 19, &out), S_OK);
    EXPECT_EQ(Call<ULONG>(out, 2), 0u);
    for (const int slot : {10, 14, 18}) EXPECT_EQ(Call(object, slot), E_NOTIMPL) << slot;
    for (const int slot : {4, 6, 7, 8, 9, 19}) EXPECT_EQ(Call(object, slot, nullptr), E_INVALIDARG) << slot;
}

TEST_F(RawSlots, File) {
    ExpectInterfaces(file_, {IID_IKtReadFile, IID_IUnknown}, false);
    ExpectCounted(file_, 1);
    void* out = nullptr;
    EXPECT_EQ(Call(file_, 3, &out), S_OK);
    EXPECT_EQ(out, file_class_.Get());
    Call<ULONG>(out, 2);
    WCHAR text[300];
    EXPECT_EQ(Call(file_, 4, text, 300, 1u), S_OK);
    EXPECT_EQ(WStringView(text), W("RED Raw (R3D)"));
    EXPECT_EQ(Call(file_, 5, text, 300, 0, 2u), S_OK);
    EXPECT_EQ(WStringView(text), W("64x48x48"));
    uint64_t value = 0;
    EXPECT_EQ(Call(file_, 6, &value, 3u, 1u), S_FALSE);
    EXPECT_EQ(Call(file_, 7, &value, 4u, 1, 1u), S_OK);
    EXPECT_EQ(std::memcmp(&value, "R3DA", 4), 0);
    EXPECT_EQ(Call(file_, 8, &out), S_OK);
    EXPECT_EQ(Call<ULONG>(out, 2), 0u);
    EXPECT_EQ(Call(file_, 10), S_OK);
    EXPECT_EQ(Call(file_, 9), S_OK);
    EXPECT_EQ(Call(file_, 10), S_FALSE);
    EXPECT_EQ(Call(file_, 11, 0u, 0u), S_OK);
    EXPECT_EQ(Call(file_, 12, path_.Path()), S_OK);
    EXPECT_EQ(Call(file_, 13, text, 300), S_OK);
    EXPECT_EQ(WStringView(text), path_.Path());
    EXPECT_EQ(Call(file_, 14, &value), S_OK);
    EXPECT_EQ(value, 100000000u);
    int32_t count = 9;
    EXPECT_EQ(Call(file_, 15, &count), S_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(Call(file_, 16, &count), S_OK);
    EXPECT_EQ(count, 3);
    uint8_t infos[2 * 184] = {};
    EXPECT_EQ(Call(file_, 17, infos, 0, 2), S_OK);
    EXPECT_EQ(At<uint32_t>(infos, 0), 184u);
    EXPECT_EQ(At<uint32_t>(infos, 4), 2u);
    EXPECT_EQ(At<uint64_t>(infos, 8), 240u);
    EXPECT_EQ(At<double>(infos, 40), 24.0);
    EXPECT_EQ(At<int32_t>(infos, 92), 64);
    EXPECT_EQ(At<uint32_t>(infos + 184, 4), 1u);
    EXPECT_EQ(At<uint64_t>(infos + 184, 8), 480000u);
    EXPECT_EQ(At<uint32_t>(infos + 184, 88), 32u);
    EXPECT_EQ(At<uint32_t>(infos + 184, 116), 384000u);
    uint32_t kind = 9;
    uint32_t second = 9;
    EXPECT_EQ(Call(file_, 18, 1, &kind, &second), S_OK);
    EXPECT_EQ(kind, 1u);
    EXPECT_EQ(Call(file_, 19, 1, 1u, &kind), S_OK);
    EXPECT_EQ(kind, 1u);
    EXPECT_EQ(Call(file_, 20, &out, nullptr, 0), S_OK);
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(file_, 21), S_OK);
    EXPECT_EQ(Call(file_, 22, &out), S_OK);
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(file_, 23), E_NOTIMPL);

    for (const int slot : {3, 8, 14, 15, 16, 20, 22})
        EXPECT_EQ(Call(file_, slot, nullptr, nullptr, 0), E_INVALIDARG) << slot;
    EXPECT_EQ(Call(file_, 18, 0, nullptr, &second), E_INVALIDARG);
    EXPECT_EQ(Call(file_, 18, 0, &kind, nullptr), E_INVALIDARG);
    EXPECT_EQ(Call(file_, 19, 0, 1u, nullptr), E_INVALIDARG);
    EXPECT_EQ(Call(file_, 13, nullptr, 9), E_FAIL);
}

// The second interface shares the object's count, and leads back to the first.
TEST_F(RawSlots, FileProperties) {
    void* properties = nullptr;
    ASSERT_EQ(Call(file_, 0, &IID_IKtFileIOMediaProperties, &properties), S_OK);
    ASSERT_NE(properties, file_);
    ExpectCounted(properties, 2);
    void* out = nullptr;
    EXPECT_EQ(Call(properties, 0, &IID_IKtReadFile, &out), S_OK);
    EXPECT_EQ(out, file_);
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(properties, 3), S_OK);
    EXPECT_EQ(Call(properties, 4, nullptr), S_OK);
    uint32_t ok = 9;
    EXPECT_EQ(Call(properties, 5, nullptr, uint64_t{0}, nullptr, &ok), E_FAIL);  // nobody answers
    EXPECT_EQ(ok, 0u);
    EXPECT_EQ(Call(properties, 5, nullptr, uint64_t{0}, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(Call(properties, 6, nullptr), S_OK);
    DeleteFileW((WString(path_.Path(), WStringView(path_.Path()).size() - 3) + W("KtDecProp")).c_str());
    EXPECT_EQ(Call<ULONG>(properties, 2), 1u);
}

TEST_F(RawSlots, VideoStream) {
    void* video = nullptr;
    ASSERT_EQ(Call(file_, 20, &video, nullptr, 0), S_OK);
    ExpectInterfaces(video, {IID_IKtReadVideoStream, IID_IKtReadStream, IID_IUnknown}, true);
    EXPECT_EQ(Call(video, 0, &IID_IKtReadStream, nullptr), S_OK);
    EXPECT_EQ(Call(video, 0, &IID_IKtReadAudioStream, nullptr), E_NOINTERFACE);
    ExpectCounted(video, 2);
    void* out = nullptr;
    EXPECT_EQ(Call(video, 3, &out), S_OK);
    EXPECT_EQ(out, file_class_.Get());
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(video, 4, &out), S_OK);
    EXPECT_EQ(out, file_);
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(video, 5), E_NOTIMPL);
    uint32_t kind = 9;
    EXPECT_EQ(Call(video, 6, &kind, nullptr, nullptr), S_OK);
    EXPECT_EQ(kind, 2u);
    int64_t time = 0;
    EXPECT_EQ(Call(video, 7, &time), S_OK);
    EXPECT_EQ(time, 100000000);
    EXPECT_EQ(Call(video, 8, &time), S_OK);
    EXPECT_EQ(time, 0);
    EXPECT_EQ(Call(video, 9, 5u), S_OK);
    uint64_t length = 0;
    EXPECT_EQ(Call(video, 11, &length), S_OK);
    EXPECT_EQ(length, 240u);
    uint8_t info[184];
    EXPECT_EQ(Call(video, 13, info), S_OK);
    EXPECT_EQ(At<uint16_t>(info, 102), 48);
    EXPECT_EQ(Call(video, 12, info), S_OK);
    EXPECT_EQ(At<uint32_t>(info, 24), 64u);
    EXPECT_EQ(At<uint32_t>(info, 28), 0xFFFFFFFFu);
    EXPECT_EQ(At<double>(info, 40), 24.0);
    EXPECT_EQ(At<double>(info, 48), 1.0);
    EXPECT_EQ(At<double>(info, 56), 0.0);
    EXPECT_EQ(At<uint16_t>(info, 102), 32);
    EXPECT_EQ(Call(video, 14, info), S_OK);

    uint8_t request[40] = {};
    const auto set = [&](std::size_t offset, auto v) { std::memcpy(request + offset, &v, sizeof v); };
    set(8, uint32_t{128});
    set(12, uint32_t{4});
    set(16, 0.5);
    set(32, 2.2222222222222223);
    uint32_t bytes = 0;
    EXPECT_EQ(Call(video, 15, uint64_t{0}, request, &bytes), S_OK);
    EXPECT_EQ(bytes, 32u * 24 * 16);
    uint8_t frame_info[216];
    EXPECT_EQ(Call(video, 16, uint64_t{7}, request, frame_info), S_OK);
    EXPECT_EQ(At<uint64_t>(frame_info, 0), 7u);
    EXPECT_EQ(At<double>(frame_info, 16), 0.5);
    EXPECT_EQ(At<uint32_t>(frame_info, 24), bytes);
    EXPECT_EQ(At<uint32_t>(frame_info, 32), 64u);
    EXPECT_EQ(At<double>(frame_info, 64), 2.2222222222222223);
    EXPECT_EQ(At<uint32_t>(frame_info, 96), 40u);
    EXPECT_EQ(At<int32_t>(frame_info, 100), 32);
    EXPECT_EQ(At<int32_t>(frame_info, 104), 24);
    EXPECT_EQ(At<uint16_t>(frame_info, 108), 1);
    EXPECT_EQ(At<uint16_t>(frame_info, 110), 128);
    EXPECT_EQ(std::memcmp(frame_info + 112, "KTDB", 4), 0);
    EXPECT_EQ(At<uint32_t>(frame_info, 116), bytes);

    std::vector<uint8_t> picture(bytes);
    uint8_t token[40] = {};
    const auto address = reinterpret_cast<uintptr_t>(picture.data());
    const auto process = static_cast<uint32_t>(GetCurrentProcessId());
    std::memcpy(token + 8, &address, 8);
    std::memcpy(token + 16, &bytes, 4);
    std::memcpy(token + 36, &process, 4);
    uint32_t written = 0;
    EXPECT_EQ(Call(video, 17, uint64_t{7}, request, token, frame_info, &written), S_OK);
    EXPECT_EQ(written, bytes);
    EXPECT_NE(At<float>(picture.data(), bytes - 16), 0.0f);
    EXPECT_EQ(At<float>(picture.data(), bytes - 4), 0.0f);

    EXPECT_EQ(Call(video, 18), E_NOTIMPL);
    EXPECT_EQ(Call(video, 19), E_NOTIMPL);
    EXPECT_EQ(Call(video, 20, 0.75), S_OK);
    double number = 0.0;
    EXPECT_EQ(Call(video, 21, &number), S_OK);
    EXPECT_EQ(number, 0.75);
    EXPECT_EQ(Call(video, 22, &number), S_OK);
    EXPECT_EQ(number, 24.0);
    // Behind the host's slots and the destructor's stand the class's own.
    fake_decoder::DecodeSettingsRecord settings;
    Told().clip.settings.imageIso = 1234;
    EXPECT_EQ(Call(video, 24, &settings), S_OK);
    EXPECT_EQ(settings.imageIso, 1234u);
    EXPECT_EQ(Call(video, 25, &settings), S_OK);
    EXPECT_EQ(Call(video, 26), S_OK);
    EXPECT_EQ(Call(video, 27), S_OK);
    for (const int slot : {4, 7, 8, 11, 12, 13, 14, 21, 22})
        EXPECT_EQ(Call(video, slot, nullptr), E_INVALIDARG) << slot;
    for (const int slot : {15, 16}) {
        EXPECT_EQ(Call(video, slot, uint64_t{0}, nullptr, frame_info), E_INVALIDARG) << slot;
        EXPECT_EQ(Call(video, slot, uint64_t{0}, request, nullptr), E_INVALIDARG) << slot;
    }
    EXPECT_EQ(Call(video, 10), S_OK);
    EXPECT_EQ(Call<ULONG>(video, 2), 1u);
}

TEST_F(RawSlots, AudioStream) {
    void* audio = nullptr;
    ASSERT_EQ(Call(file_, 20, &audio, nullptr, 1), S_OK);
    ExpectInterfaces(audio, {IID_IKtReadAudioStream, IID_IKtReadStream, IID_IUnknown}, true);
    EXPECT_EQ(Call(audio, 0, &IID_IKtReadStream, nullptr), S_OK);
    ExpectCounted(audio, 2);
    void* out = nullptr;
    EXPECT_EQ(Call(audio, 3, &out), S_OK);
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(audio, 4, &out), S_OK);
    EXPECT_EQ(out, file_);
    Call<ULONG>(out, 2);
    EXPECT_EQ(Call(audio, 5), S_OK);
    uint32_t number = 9;
    EXPECT_EQ(Call(audio, 6, &number, nullptr, nullptr), S_OK);
    EXPECT_EQ(number, 1u);
    int64_t time = 0;
    EXPECT_EQ(Call(audio, 7, &time), S_OK);
    EXPECT_EQ(time, 100000000);
    EXPECT_EQ(Call(audio, 8, &time), S_OK);
    EXPECT_EQ(time, 0);
    EXPECT_EQ(Call(audio, 9, 5u), S_OK);
    uint64_t length = 0;
    EXPECT_EQ(Call(audio, 11, &length), S_OK);
    EXPECT_EQ(length, 480000u);
    EXPECT_EQ(Call(audio, 12, &number), S_OK);
    EXPECT_EQ(number, 8u);
    uint8_t info[184];
    EXPECT_EQ(Call(audio, 13, info), S_OK);
    EXPECT_EQ(At<uint32_t>(info, 92), 32u);  // float samples
    EXPECT_EQ(Call(audio, 15, info), S_FALSE);
    EXPECT_EQ(Call(audio, 14, info), S_OK);
    EXPECT_EQ(At<uint32_t>(info, 92), 0u);
    EXPECT_EQ(At<uint16_t>(info, 112), 0x30);
    EXPECT_EQ(Call(audio, 15, info), S_OK);
    float samples[20] = {};
    const auto token = TokenOf(samples, sizeof samples);
    int32_t read = 0;
    EXPECT_EQ(Call(audio, 16, int64_t{3}, &token, 10, &read), S_OK);
    EXPECT_EQ(read, 10);
    EXPECT_NE(samples[19], 0.0f);
    EXPECT_EQ(Call(audio, 17), E_NOTIMPL);
    EXPECT_EQ(Call(audio, 18), E_NOTIMPL);
    for (const int slot : {20, 21, 22}) EXPECT_EQ(Call(audio, slot), S_OK) << slot;
    for (const int slot : {4, 7, 8, 11, 12, 13, 14, 15}) EXPECT_EQ(Call(audio, slot, nullptr), E_INVALIDARG) << slot;
    EXPECT_EQ(Call(audio, 10), S_OK);
    EXPECT_EQ(Call<ULONG>(audio, 2), 1u);
}

TEST_F(RawSlots, Meta) {
    void* meta = nullptr;
    ASSERT_EQ(Call(file_, 22, &meta), S_OK);
    ExpectInterfaces(meta, {IID_IKtReadMeta, IID_IUnknown}, false);
    ExpectCounted(meta, 2);
    for (const int slot : {3, 4, 5, 7}) EXPECT_EQ(Call(meta, slot), E_NOTIMPL) << slot;
    WCHAR text[40];
    EXPECT_EQ(Call(meta, 6, 0x444F4354u, text, 40), S_OK);
    EXPECT_EQ(WStringView(text), W("36005000000"));
    // The second table of the object is not answered to and works.
    void* generic = static_cast<char*>(meta) + sizeof(void*);
    for (const int slot : {3, 4}) EXPECT_EQ(Call(generic, slot), E_NOTIMPL) << slot;
    ExpectCounted(generic, 2);
    EXPECT_EQ(Call<ULONG>(meta, 2), 1u);
}

}  // namespace
}  // namespace reader_tests
