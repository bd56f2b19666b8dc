#include "tests/reader/reader_scene.h"

#include "platform/text.h"
#include "reader/plugin_exports.h"

namespace reader_tests {

fake_decoder::State& Decoder() {
    // Never let go: the state outlives each time that the module lets the library go.
    static fake_decoder::State& state = []() -> fake_decoder::State& {
        const HMODULE library = LoadLibraryW(platform::Wide(CLIPFIO_FAKE_DECODER "/REDR3D-x64.dll").c_str());
        const auto get = reinterpret_cast<decltype(&FakeDecoderState)>(
            reinterpret_cast<void*>(GetProcAddress(library, "FakeDecoderState")));
        return *get();
    }();
    return state;
}

ComPtr<IKtReadFileClass> ReaderTest::NewFileClass() {
    ComPtr<IClassFactory> factory;
    ComPtr<IKtReadFileClass> file_class;
    EXPECT_EQ(DllGetClassObject(CLSID_KtReadFileClass, IID_IClassFactory, factory.OutVoid()), S_OK);
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IKtReadFileClass, file_class.OutVoid()), S_OK);
    return file_class;
}

ComPtr<IKtReadFile> ReaderTest::EmptyFile() const {
    ComPtr<IKtReadFile> file;
    EXPECT_EQ(file_class_->CreateFile(file.Out()), S_OK);
    return file;
}

ComPtr<IKtReadFile> ReaderTest::MeasuredFile(const WCHAR* path) const {
    auto file = EmptyFile();
    EXPECT_EQ(file->SetFileName(path), S_OK);
    return file;
}

ComPtr<IKtReadFile> ReaderTest::OpenFile(const WCHAR* path) const {
    auto file = MeasuredFile(path);
    EXPECT_EQ(file->Open(0, 0), S_OK);
    return file;
}

}  // namespace reader_tests
