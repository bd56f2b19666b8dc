// The reader when things fail: memory, the platform's calls, the decoder library, the module's own start.
#include <algorithm>
#include <cstring>
#include <iostream>

#include "platform/faults.h"
#include "platform/modules.h"
#include "platform/text.h"
#include "reader/plugin_exports.h"
#include "reader/plugin_module.h"
#include "support/child_roles.h"
#include "support/fail_each.h"
#include "support/scoped_variable.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

class ReaderFailures : public ReaderTest {};

// A host's session from the class to frames and sound; ends with the first failure, which is its result. Takes no
// memory of its own.
HRESULT RunSession(IKtReadFileClass* file_class) {
    ComPtr<IKtReadFile> file;
    ComPtr<IKtReadFile> copy;
    ComPtr<IKtReadVideoStream> video;
    ComPtr<IKtReadAudioStream> audio;
    ComPtr<IKtReadMeta> meta;
    float samples[64];
    uint8_t picture[10 * 6 * 16];
    const auto request = Request(128);
    const auto picture_token = TokenOf(picture, sizeof picture);
    const auto sound_token = TokenOf(samples, sizeof samples);
    _ktframeinfo info;
    uint32_t bytes = 0;
    int32_t read = -1;
    WCHAR text[64];
    HRESULT hr = file_class->CreateNamed(file.Out(), 0, 0, kNoFile, 1);
    EXPECT_EQ(file.Get() != nullptr, hr == S_OK);
    if (SUCCEEDED(hr)) hr = file->GetStream(video.OutVoid(), 0, 0);
    if (SUCCEEDED(hr)) hr = file->GetStream(audio.OutVoid(), 0, 1);
    if (SUCCEEDED(hr)) hr = file->GetMeta(meta.OutVoid());
    if (SUCCEEDED(hr)) hr = video->ReadFrame(0, &request, &picture_token, &info, &bytes);
    if (SUCCEEDED(hr)) hr = audio->ReadSamples(0, &sound_token, 32, &read);
    if (SUCCEEDED(hr)) hr = meta->GetValue(0x444F4354, text, 64);
    if (SUCCEEDED(hr)) hr = file->GetStreamText(text, 64, 1, 2);
    if (SUCCEEDED(hr)) hr = file->Duplicate(copy.Out());
    EXPECT_EQ(copy.Get() != nullptr, hr == S_OK);
    if (SUCCEEDED(hr)) hr = file->Close();
    EXPECT_TRUE(FAILED(hr) || (bytes == 960 && read == 32));
    return hr;
}

// The number of sessions that failed.
template <class Failing>
int FailSessions(IKtReadFileClass* file_class) {
    int failures = 0;
    support::FailEach<Failing>([&] { return RunSession(file_class); },
                               [&](HRESULT hr, bool) {
                                   EXPECT_TRUE(hr == S_OK || hr == E_OUTOFMEMORY || hr == E_FAIL) << std::hex << hr;
                                   EXPECT_EQ(Decoder().live_clips, 0);
                                   failures += FAILED(hr);
                               });
    return failures;
}

TEST_F(ReaderFailures, EachFailingAllocationIsAFailureAndLeavesNothing) {
    Told().remembers = false;
    ASSERT_EQ(RunSession(file_class_.Get()), S_OK);
    EXPECT_GT(FailSessions<FailingNew>(file_class_.Get()), 0);
}

TEST_F(ReaderFailures, EachFailingCallOfThePlatformIsAFailureAndLeavesNothing) {
    Told().remembers = false;
    const int failures = FailSessions<support::FailingCall>(file_class_.Get());
    if (failures == 0) GTEST_SKIP() << "nothing is failed on this platform";
    EXPECT_GE(failures, 6);  // objects and mutexes of a file and of its copy, at the least
}

TEST_F(ReaderFailures, AttachFailsWithTheKernelAndTheLanguageAlone) {
    file_class_.Reset();
    clipfio::DetachProcess();
    int refused = 0;
    const auto attach = [] { return clipfio::AttachProcess(nullptr); };
    const int failed = support::FailEach<support::FailingCall>(attach, [&](bool attached, bool hit) {
        EXPECT_TRUE(attached || hit);
        refused += !attached;
        clipfio::DetachProcess();
        EXPECT_EQ(clipfio::ProcessEditor(), nullptr);
        EXPECT_EQ(KtLang_GetLCID(clipfio::Module().hLang), 0u);
    });
    // At the least the two language contexts refuse, and the decoder's search does not.
    EXPECT_TRUE(failed == 0 || (refused >= 2 && refused < failed)) << refused << " of " << failed;
    support::FailEach<FailingNew>(attach, [](bool, bool) { clipfio::DetachProcess(); });
    ASSERT_TRUE(AttachReader());
    file_class_ = NewFileClass();
    EXPECT_EQ(RunSession(file_class_.Get()), S_OK);
}

// Decoder libraries that cannot be used. The module attaches all the same, and clips do not open.
const struct {
    const char *name, *folder;
    uint32_t patch;
    int32_t phase_status[3];
} kBadDecoders[] = {
    {"none", "/no such folder", 3, {0, 0, 0}},
    {"old", CLIPFIO_FAKE_DECODER, 2, {0, 0, 0}},
    {"fails in phase 0", CLIPFIO_FAKE_DECODER, 3, {14, 0, 0}},
    {"fails in phase 1", CLIPFIO_FAKE_DECODER, 3, {0, -1, 0}},
    {"fails in phase 2", CLIPFIO_FAKE_DECODER, 3, {0, 0, 99}},
};

TEST_F(ReaderFailures, BadDecoderLeavesTheModuleAndItsClassesWorking) {
    for (const auto& bad : kBadDecoders) {
        SCOPED_TRACE(bad.name);
        file_class_.Reset();
        clipfio::DetachProcess();
        Told().version[2] = bad.patch;
        std::memcpy(Told().phase_status, bad.phase_status, sizeof bad.phase_status);
        const support::ScopedVariable folder(W("R3DSDKPATH"), platform::Wide(bad.folder).c_str());
        ASSERT_TRUE(clipfio::AttachProcess(nullptr));
        ASSERT_NE(clipfio::ProcessEditor(), nullptr);
        file_class_ = NewFileClass();
        EXPECT_EQ(file_class_->CheckHeader(nullptr, "....RED1", 8, nullptr), S_OK);
        const uint32_t id = 1;
        BSTR text = nullptr;
        EXPECT_EQ(file_class_->GetClassStrings(&id, 1, &text), S_OK);
        EXPECT_EQ(WStringView(text), W("R3D"));
        SysFreeString(text);

        const auto file = EmptyFile();
        EXPECT_EQ(file->SetFileName(kNoFile), E_FAIL);
        EXPECT_EQ(file->Open(0, 0), E_FAIL);
        EXPECT_EQ(file->IsOpen(), S_FALSE);
        EXPECT_EQ(file->Close(), S_OK);
        void* out = this;
        EXPECT_EQ(file->GetStream(&out, 0, 0), E_UNEXPECTED);
        const auto audio = AudioOf(file.Get());
        float samples[4] = {7, 7, 7, 7};
        const auto token = TokenOf(samples, sizeof samples);
        int32_t read = -1;
        EXPECT_EQ(audio->ReadSamples(0, &token, 1, &read), E_FAIL);
        EXPECT_EQ(read, 0);
        EXPECT_EQ(samples[0], 7);
        ComPtr<IKtReadMeta> meta;
        EXPECT_EQ(file->GetMeta(meta.OutVoid()), S_OK);
        EXPECT_EQ(meta->GetValue(0x444F4354, nullptr, 0), E_UNEXPECTED);
        ComPtr<IKtFileIOMediaProperties> properties;
        EXPECT_EQ(file->QueryInterface(IID_IKtFileIOMediaProperties, properties.OutVoid()), S_OK);
        EXPECT_EQ(properties->BeginProperties(), S_OK);
        EXPECT_EQ(properties->GatherProperties(nullptr), E_UNEXPECTED);
        EXPECT_EQ(properties->ApplyProperties(nullptr), E_UNEXPECTED);
        ComPtr<IKtReadFile> copy;
        EXPECT_EQ(file->Duplicate(copy.Out()), E_FAIL);
        EXPECT_EQ(file_class_->CreateNamed(copy.Out(), 0, 0, kNoFile, 1), E_FAIL);
    }
    file_class_.Reset();
}

// A module that refuses its process: its exports refuse in their turn.
TEST(ModuleRefusal, GivesNoFactory) {
    // The first call that can fail is the loading itself; behind it comes what the kernel and the two language contexts
    // need, without which the module refuses. What fails later, the decoder's search, is no refusal.
    std::vector<std::string> results;
    while (results.size() < 100 && std::count(results.begin(), results.end(), "factory") < 2) {
        support::ChildProcess child("load_the_module", {std::to_string(results.size())});
        results.push_back(child.ReadLine());
        if (results.back() == "nothing failed") GTEST_SKIP() << "nothing is failed on this platform";
        EXPECT_EQ(child.Wait(), 0u);
    }
    EXPECT_EQ(results.front(), "not loaded");
    EXPECT_GE(std::count(results.begin(), results.end(), "refused"), 3);
    EXPECT_EQ(std::count(results.begin() + 1, results.end() - 2, "refused"), std::ssize(results) - 3);
    EXPECT_EQ(results.back(), "factory");
}

}  // namespace
}  // namespace reader_tests

CHILD_ROLE(load_the_module) {
    platform::faults::FailAfter(std::stoi(arguments[0]));
    const HMODULE module = LoadLibraryW(platform::Wide(CLIPFIO_MODULE).c_str());
    const bool hit = platform::faults::Hit();
    platform::faults::Clear();
    if (!hit) {
        std::cout << "nothing failed" << std::endl;
        return 0;
    }
    const auto get = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(module ? GetProcAddress(module, "DllGetClassObject") : nullptr));
    if (!get) {
        std::cout << "not loaded" << std::endl;
        return 0;
    }
    platform::ComPtr<IClassFactory> factory;
    const HRESULT hr = get(CLSID_KtReadFileClass, IID_IClassFactory, factory.OutVoid());
    std::cout << (hr == S_OK ? "factory" : hr == E_UNEXPECTED && !factory ? "refused" : "something else") << std::endl;
    return 0;
}
