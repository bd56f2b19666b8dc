// The slots of the interfaces between host and module, called by their numbers in the objects' tables with plain
// function pointers, as a host does that was built without our headers. What such a host in C finds of ids, records and
// pictures (tests/contract) stands there alone.
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

// What a slot writes to its one argument.
template <class Value>
Value Written(void* object, int slot) {
    Value value;
    std::memset(static_cast<void*>(&value), 0x55, sizeof value);
    EXPECT_EQ(Call(object, slot, &value), S_OK) << slot;
    return value;
}

// The object that a slot gives, with the reference let go: another one holds it.
void* Given(void* object, int slot) {
    void* const given = Written<void*>(object, slot);
    Call<ULONG>(given, 2);
    return given;
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
        file_ = Written<void*>(file_class_.Get(), 19);
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
    // Each id gives the object, and the unknown one is refused.
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
    static void ExpectEach(void* object, std::initializer_list<int> slots, HRESULT result) {
        for (const int slot : slots) EXPECT_EQ(Call(object, slot, nullptr, nullptr, 0), result) << slot;
    }
    // What both kinds of streams have in the same slots.
    void ExpectStream(void* stream, uint32_t kind, uint64_t length) {
        ExpectCounted(stream, 2);
        EXPECT_EQ(Given(stream, 3), file_class_.Get());
        EXPECT_EQ(Given(stream, 4), file_);
        uint32_t told = 9;
        EXPECT_EQ(Call(stream, 6, &told, nullptr, nullptr), S_OK);
        EXPECT_EQ(told, kind);
        EXPECT_EQ(Written<int64_t>(stream, 7), 100000000);
        EXPECT_EQ(Written<int64_t>(stream, 8), 0);
        EXPECT_EQ(Call(stream, 9, 5u), S_OK);
        EXPECT_EQ(Written<uint64_t>(stream, 11), length);
        ExpectEach(stream, {4, 7, 8, 11, 12, 13, 14}, E_INVALIDARG);
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
    ExpectEach(info, {4}, E_INVALIDARG);
    int32_t* const none = nullptr;
    EXPECT_EQ(Call(info, 5, 0u, nullptr, nullptr, 0, none, none, none, none, none, none, uint64_t{0}, none), S_OK);
    uint8_t id[16];
    WCHAR name[20];
    int32_t number = 77;
    int32_t* const n = &number;
    EXPECT_EQ(Call(info, 5, 1u, id, name, 20, n, n, n, n, n, n, uint64_t{0}, n), E_INVALIDARG);
    EXPECT_EQ(number, 77);
    EXPECT_EQ(Call<ULONG>(info, 2), 0u);
}

TEST_F(RawSlots, FileClass) {
    void* const object = file_class_.Get();
    ExpectInterfaces(object, {IID_IKtReadFileClass, IID_IUnknown}, false);
    EXPECT_EQ(Written<uint32_t>(object, 4), 0xFFFFFFFFu);
    EXPECT_EQ(Call(object, 3, 5u), S_OK);
    EXPECT_EQ(Written<uint32_t>(object, 4), 5u);
    EXPECT_EQ(Call(object, 5, nullptr), S_OK);
    EXPECT_EQ(Written<void*>(object, 6), nullptr);
    EXPECT_EQ(Written<uint32_t>(object, 9), 0u);
    BSTR text = nullptr;
    const uint32_t string_id = 4;
    EXPECT_EQ(Call(object, 11, &string_id, 1u, &text), S_OK);
    EXPECT_EQ(WStringView(text), W("*.r3d"));
    SysFreeString(text);
    EXPECT_EQ(Call(object, 12, nullptr, "....RED2", 8u, nullptr), S_OK);
    EXPECT_EQ(Call(object, 13, W("C:\\no such file")), E_FAIL);
    void* out = nullptr;
    EXPECT_EQ(Call(object, 15, &out, 0u, 0u, kNoFile, 0u), S_OK);
    EXPECT_EQ(Call<ULONG>(out, 2), 0u);
    EXPECT_EQ(Call(object, 16), S_OK);
    EXPECT_EQ(Call(object, 17, nullptr), S_OK);
    ExpectEach(object, {4, 6, 7, 8, 9, 19}, E_INVALIDARG);
}

TEST_F(RawSlots, File) {
    ExpectInterfaces(file_, {IID_IKtReadFile, IID_IUnknown}, false);
    EXPECT_EQ(Given(file_, 3), file_class_.Get());
    uint64_t value = 0;
    EXPECT_EQ(Call(file_, 6, &value, 3u, 1u), S_FALSE);
    EXPECT_EQ(Call(file_, 7, &value, 4u, 1, 1u), S_OK);
    EXPECT_EQ(std::memcmp(&value, "R3DA", 4), 0);
    EXPECT_EQ(Call<ULONG>(Written<void*>(file_, 8), 2), 0u);
    EXPECT_EQ(Call(file_, 10), S_OK);
    EXPECT_EQ(Call(file_, 9), S_OK);
    EXPECT_EQ(Call(file_, 10), S_FALSE);
    EXPECT_EQ(Call(file_, 11, 0u, 0u), S_OK);
    EXPECT_EQ(Call(file_, 12, path_.Path()), S_OK);
    WCHAR text[300];
    EXPECT_EQ(Call(file_, 13, text, 300), S_OK);
    EXPECT_EQ(WStringView(text), path_.Path());
    EXPECT_EQ(Written<uint64_t>(file_, 14), 100000000u);
    EXPECT_EQ(Written<int32_t>(file_, 15), 2);
    EXPECT_EQ(Written<int32_t>(file_, 16), 3);
    uint32_t kind = 9, second = 9;
    EXPECT_EQ(Call(file_, 18, 1, &kind, &second), S_OK);
    EXPECT_EQ(kind, 1u);
    kind = 9;
    EXPECT_EQ(Call(file_, 19, 1, 1u, &kind), S_OK);
    EXPECT_EQ(kind, 1u);
    EXPECT_EQ(Call(file_, 21), S_OK);
    EXPECT_EQ(Call(file_, 23), E_NOTIMPL);

    ExpectEach(file_, {3, 8, 14, 15, 16, 20, 22}, E_INVALIDARG);
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
    ExpectStream(video, 2, 240);
    EXPECT_EQ(Call(video, 5), E_NOTIMPL);
    uint8_t info[184];
    EXPECT_EQ(Call(video, 13, info), S_OK);
    EXPECT_EQ(At<uint16_t>(info, 102), 48);
    EXPECT_EQ(Call(video, 12, info), S_OK);
    EXPECT_EQ(At<uint16_t>(info, 102), 32);
    EXPECT_EQ(Call(video, 14, info), S_OK);
    const auto request = Request(128, 0.5);
    uint8_t frame_info[216];
    EXPECT_EQ(Call(video, 16, uint64_t{7}, &request, frame_info), S_OK);
    EXPECT_EQ(At<uint64_t>(frame_info, 0), 7u);
    EXPECT_EQ(At<uint32_t>(frame_info, 24), 32u * 24 * 16);
    EXPECT_EQ(At<uint32_t>(frame_info, 116), 32u * 24 * 16);
    EXPECT_EQ(Call(video, 19), E_NOTIMPL);
    EXPECT_EQ(Call(video, 20, 0.75), S_OK);
    EXPECT_EQ(Written<double>(video, 21), 0.75);
    EXPECT_EQ(Written<double>(video, 22), 24.0);
    // Behind the host's slots and the destructor's stand the class's own.
    Told().clip.settings.imageIso = 1234;
    for (const int slot : {24, 25}) {
        fake_decoder::DecodeSettingsRecord settings;
        EXPECT_EQ(Call(video, slot, &settings), S_OK);
        EXPECT_EQ(settings.imageIso, 1234u) << slot;
    }
    EXPECT_EQ(Call(video, 26), S_OK);
    EXPECT_EQ(Call(video, 27), S_OK);
    ExpectEach(video, {21, 22}, E_INVALIDARG);
    for (const int slot : {15, 16}) {
        EXPECT_EQ(Call(video, slot, uint64_t{0}, nullptr, frame_info), E_INVALIDARG) << slot;
        EXPECT_EQ(Call(video, slot, uint64_t{0}, &request, nullptr), E_INVALIDARG) << slot;
    }
    EXPECT_EQ(Call(video, 10), S_OK);
    EXPECT_EQ(Call<ULONG>(video, 2), 1u);
}

TEST_F(RawSlots, AudioStream) {
    void* audio = nullptr;
    ASSERT_EQ(Call(file_, 20, &audio, nullptr, 1), S_OK);
    ExpectInterfaces(audio, {IID_IKtReadAudioStream, IID_IKtReadStream, IID_IUnknown}, true);
    EXPECT_EQ(Call(audio, 0, &IID_IKtReadStream, nullptr), S_OK);
    ExpectStream(audio, 1, 480000);
    EXPECT_EQ(Call(audio, 5), S_OK);
    EXPECT_EQ(Written<uint32_t>(audio, 12), 8u);
    uint8_t info[184];
    EXPECT_EQ(Call(audio, 13, info), S_OK);
    EXPECT_EQ(At<uint32_t>(info, 92), 32u);  // float samples
    EXPECT_EQ(Call(audio, 15, info), S_FALSE);
    EXPECT_EQ(Call(audio, 14, info), S_OK);
    EXPECT_EQ(At<uint32_t>(info, 92), 0u);
    EXPECT_EQ(At<uint16_t>(info, 112), 0x30);
    EXPECT_EQ(Call(audio, 15, info), S_OK);
    ExpectEach(audio, {17, 18}, E_NOTIMPL);
    ExpectEach(audio, {20, 21, 22}, S_OK);
    ExpectEach(audio, {15}, E_INVALIDARG);
    EXPECT_EQ(Call(audio, 10), S_OK);
    EXPECT_EQ(Call<ULONG>(audio, 2), 1u);
}

TEST_F(RawSlots, Meta) {
    void* const meta = Written<void*>(file_, 22);
    ExpectInterfaces(meta, {IID_IKtReadMeta, IID_IUnknown}, false);
    ExpectCounted(meta, 2);
    for (const int slot : {4, 5, 7}) EXPECT_EQ(Call(meta, slot), E_NOTIMPL) << slot;
    // The second table of the object is not answered to and works.
    void* generic = static_cast<char*>(meta) + sizeof(void*);
    for (const int slot : {3, 4}) EXPECT_EQ(Call(generic, slot), E_NOTIMPL) << slot;
    ExpectCounted(generic, 2);
    EXPECT_EQ(Call<ULONG>(meta, 2), 1u);
}

}  // namespace
}  // namespace reader_tests
