#include <cstring>
#include <string_view>

#include "kernel/lang.h"
#include "kernel/runtime/about_box.h"
#include "platform/text.h"
#include "reader/plugin_exports.h"
#include "reader/plugin_module.h"
#include "support/temp_file.h"
#include "support/whole_file.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

using clipfio::Module;

class ReadFileClass : public ReaderTest {
  protected:
    std::string StringOf(uint32_t id) const {
        BSTR text = nullptr;
        EXPECT_EQ(file_class_->GetClassStrings(&id, 1, &text), S_OK);
        const std::string narrow = platform::Utf8(text);
        SysFreeString(text);
        return narrow;
    }
};

TEST_F(ReadFileClass, NamesTheFileType) {
    constexpr struct {
        uint32_t id;
        const char* text;
    } kRows[] = {{1, "R3D"},           {2, "RED Raw (R3D)"}, {3, ""}, {4, "*.r3d"},
                 {5, "RED Raw (R3D)"}, {6, "Open RED"},      {8, ""}, {0, ""},
                 {0xFFFFFFFF, ""}};
    for (const auto& row : kRows) EXPECT_EQ(StringOf(row.id), row.text) << row.id;
    EXPECT_NE(StringOf(7), "");

    const uint32_t ids[] = {4, 3, 1};
    BSTR texts[3] = {};
    ASSERT_EQ(file_class_->GetClassStrings(ids, 3, texts), S_OK);
    EXPECT_EQ(WString(texts[0]) + texts[1] + texts[2], W("*.r3dR3D"));
    for (const BSTR text : texts) SysFreeString(text);
    EXPECT_EQ(file_class_->GetClassStrings(nullptr, 0, nullptr), S_OK);
    EXPECT_EQ(file_class_->GetClassStrings(nullptr, 1, texts), E_INVALIDARG);
    EXPECT_EQ(file_class_->GetClassStrings(ids, 1, nullptr), E_INVALIDARG);
}

TEST_F(ReadFileClass, RecognisesAHeaderByTheBytesAtFour) {
    const struct {
        std::string_view bytes;
        HRESULT result;
    } kRows[] = {
        {"....RED1", S_OK},          {std::string_view("\0\0\0\0RED2", 8), S_OK},
        {"RED1RED2 and more", S_OK}, {"RED1....", E_FAIL},
        {"....RED3", E_FAIL},        {"....red1", E_FAIL},
        {"....1DER", E_FAIL},        {".....RED1", E_FAIL},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(file_class_->CheckHeader(nullptr, row.bytes.data(), static_cast<uint32_t>(row.bytes.size()), nullptr),
                  row.result)
            << row.bytes;
    }
    for (uint32_t size = 0; size < 8; ++size) {
        EXPECT_EQ(file_class_->CheckHeader(nullptr, "....RED1", size, nullptr), E_FAIL) << size;
    }
    EXPECT_EQ(file_class_->CheckHeader(nullptr, nullptr, 8, nullptr), E_FAIL);
}

TEST_F(ReadFileClass, LooksIntoFiles) {
    const support::TempFile file(".r3d");
    EXPECT_EQ(file_class_->CheckFile(file.Path()), E_FAIL);  // not there
    for (const auto& [bytes, result] : {std::pair<std::string_view, HRESULT>{"", E_FAIL},
                                        {"....RED", E_FAIL},
                                        {"....RED1", S_OK},
                                        {"....RED9 and more", E_FAIL}}) {
        support::WriteWhole(file.Path(), bytes);
        EXPECT_EQ(file_class_->CheckFile(file.Path()), result) << bytes;
    }
    support::WriteWhole(file.Path(), "....RED2" + std::string(10000, 'x'));
    EXPECT_EQ(file_class_->CheckFile(file.Path()), S_OK);
    EXPECT_EQ(file_class_->CheckFile(nullptr), E_FAIL);
    EXPECT_EQ(file_class_->CheckFile(W("")), E_FAIL);
    EXPECT_EQ(file_class_->CheckFile(W("C:\\")), E_FAIL);  // a folder
    EXPECT_EQ(file_class_->CheckFile(WString(100000, W('x')).c_str()), E_FAIL);
}

TEST_F(ReadFileClass, CreatesNamedFilesAndOpensThemOnRequest) {
    ComPtr<IKtReadFile> file;
    ASSERT_EQ(file_class_->CreateNamed(file.Out(), 0, 0, kNoFile, 0xFFFFFFFE), S_OK);
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    EXPECT_EQ(Got(file, &IKtReadFile::GetStreamCount), 2);  // measured all the same
    ASSERT_EQ(file_class_->CreateNamed(file.Out(), 0, 0, kNoFile, 1), S_OK);
    EXPECT_EQ(file->IsOpen(), S_OK);

    Told().loads_to_fail = 100;
    ASSERT_EQ(file_class_->CreateNamed(file.Out(), 0, 0, kNoFile, 0), S_OK);
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    file.Reset();
    auto* garbage = reinterpret_cast<IKtReadFile*>(this);
    EXPECT_EQ(file_class_->CreateNamed(&garbage, 0, 0, kNoFile, 1), E_FAIL);
    EXPECT_EQ(garbage, nullptr);
    EXPECT_EQ(file_class_->CreateNamed(nullptr, 0, 0, kNoFile, 1), E_INVALIDARG);
    garbage = reinterpret_cast<IKtReadFile*>(this);
    EXPECT_EQ(file_class_->CreateNamed(&garbage, 0, 0, nullptr, 1), E_FAIL);
    EXPECT_EQ(garbage, nullptr);
}

// A host's site, on the stack.
struct Site final : IKtHostSite {
    HRESULT answer = S_OK;
    uint32_t wanted = 0;
    uint32_t seen = 0;
    int released = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 99; }  // the class takes the caller's reference over
    ULONG STDMETHODCALLTYPE Release() override {
        ++released;
        return 0;
    }
    HRESULT STDMETHODCALLTYPE GetLocale(uint32_t* lcid, uint32_t reserved) override {
        EXPECT_EQ(reserved, 0u);
        seen = *lcid;
        if (wanted) *lcid = wanted;
        return answer;
    }
};

TEST_F(ReadFileClass, TakesTheLanguageOfItsSite) {
    Site first;
    Site second;
    first.wanted = 0x0411;
    IKtHostSite* site = &second;
    EXPECT_EQ(file_class_->GetSite(&site), S_OK);
    EXPECT_EQ(site, nullptr);

    EXPECT_EQ(file_class_->SetSite(&first), S_OK);
    EXPECT_EQ(first.seen, 0u);  // not set until then
    EXPECT_EQ(KtLang_GetLCID(Module().hLang), 0x0411u);
    EXPECT_EQ(file_class_->GetSite(&site), S_OK);
    EXPECT_EQ(site, &first);

    second.answer = E_FAIL;
    second.wanted = 0x0407;
    EXPECT_EQ(file_class_->SetSite(&second), S_OK);
    EXPECT_EQ(first.released, 1);
    EXPECT_EQ(second.seen, 0x0411u);
    EXPECT_EQ(KtLang_GetLCID(Module().hLang), 0x0411u);  // a failure changes nothing
    EXPECT_EQ(StringOf(1), "R3D");                       // there is no Japanese text: the base language serves

    EXPECT_EQ(file_class_->SetSite(nullptr), S_OK);
    EXPECT_EQ(second.released, 1);
    EXPECT_EQ(file_class_->GetSite(&site), S_OK);
    EXPECT_EQ(site, nullptr);

    EXPECT_EQ(file_class_->SetSite(&first), S_OK);
    file_class_.Reset();
    EXPECT_EQ(first.released, 1);  // the end of the class does not let its site go
}

const KtAboutRecord* g_shown = nullptr;

HRESULT Show(HWND, const KtAboutRecord& record) {
    g_shown = &record;
    EXPECT_EQ(record.page, 0u);
    EXPECT_EQ(record.pages, 0x200u);
    EXPECT_EQ(WStringView(record.name), W(""));
    EXPECT_EQ(WStringView(record.version), W("Version 20.0 (Build 139)"));
    EXPECT_EQ(WStringView(record.text), W(""));
    EXPECT_NE(record.legal1, nullptr);
    EXPECT_NE(record.legal2, nullptr);
    const std::string details = platform::Utf8(record.details);
    EXPECT_LT(details.size(), 260u);
    EXPECT_NE(details.find("\nLEIDUP 7.0.3-35I46 (20171005 W64S) fake ["), std::string::npos) << details;
    return E_FAIL;  // which nobody minds
}

TEST_F(ReadFileClass, ShowsItselfInTheAboutBox) {
    EXPECT_EQ(file_class_->ShowAbout(nullptr), S_OK);  // nothing is there to show it
    clipfio::SetAboutPresenter(Show);
    EXPECT_EQ(file_class_->ShowAbout(nullptr), S_OK);
    clipfio::SetAboutPresenter(nullptr);
    EXPECT_NE(g_shown, nullptr);
}

TEST_F(ReadFileClass, IsMadeByItsFactoryAndByNoOther) {
    CLSID near_file_class = CLSID_KtReadFileClass;
    for (int i = 2; i < 8; ++i) near_file_class.Data4[i] = 0;
    CLSID far_file_class = CLSID_KtReadFileClass;
    far_file_class.Data4[1] ^= 1;
    CLSID near_info = CLSID_KtUnsharedFIOPluginInfo;
    near_info.Data4[7] ^= 1;
    const struct {
        CLSID class_id;
        IID interface_id;
        HRESULT result;
        bool made;
    } kRows[] = {
        {CLSID_KtReadFileClass, IID_IKtReadFileClass, S_OK, true},
        {near_file_class, IID_IKtReadFileClass, S_OK, true},
        {CLSID_KtReadFileClass, IID_IUnknown, E_NOINTERFACE, false},
        {near_file_class, IID_IKtReadFile, E_NOINTERFACE, false},
        {far_file_class, IID_IKtReadFileClass, S_OK, false},
        {CLSID_KtUnsharedFIOPluginInfo, IID_IKtUnsharedFIOPluginInfo, S_OK, true},
        {CLSID_KtUnsharedFIOPluginInfo, IID_IUnknown, S_OK, true},
        {CLSID_KtUnsharedFIOPluginInfo, IID_IKtReadFileClass, E_NOINTERFACE, false},
        {near_info, IID_IKtUnsharedFIOPluginInfo, S_OK, false},
        {IID_IUnknown, IID_IUnknown, S_OK, false},
    };
    for (const auto& row : kRows) {
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(DllGetClassObject(row.class_id, IID_IUnknown, factory.OutVoid()), S_OK);
        void* made = this;
        EXPECT_EQ(factory->CreateInstance(nullptr, row.interface_id, &made), row.result);
        EXPECT_EQ(made != nullptr, row.made) << &row - kRows;
        if (made) {
            EXPECT_EQ(static_cast<IUnknown*>(made)->AddRef(), 2u);
            EXPECT_EQ(static_cast<IUnknown*>(made)->Release(), 1u);
            EXPECT_EQ(static_cast<IUnknown*>(made)->Release(), 0u);
        }
        EXPECT_EQ(factory->CreateInstance(nullptr, row.interface_id, nullptr), E_POINTER);
    }
    void* out = this;
    EXPECT_EQ(DllGetClassObject(CLSID_KtReadFileClass, IID_IKtReadFileClass, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(DllGetClassObject(CLSID_KtReadFileClass, IID_IUnknown, nullptr), E_POINTER);
}

TEST_F(ReadFileClass, FactoriesAndLocksAreCounted) {
    EXPECT_EQ(clipfio::FactoryCount(), 0);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(IID_IUnknown, IID_IClassFactory, factory.OutVoid()), S_OK);
    EXPECT_EQ(clipfio::FactoryCount(), 1);
    const int32_t before = clipfio::ServerLockCount();
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    EXPECT_EQ(clipfio::ServerLockCount(), before - 1);
    EXPECT_EQ(factory->LockServer(2), S_OK);
    EXPECT_EQ(clipfio::ServerLockCount(), before);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    factory.Reset();
    EXPECT_EQ(clipfio::FactoryCount(), 0);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
}

}  // namespace
}  // namespace reader_tests
