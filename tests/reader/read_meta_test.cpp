#include "platform/text.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

class ReadMeta : public ReaderTest {
  protected:
    static constexpr uint32_t kFirst = 0x444F4354;
    static constexpr uint32_t kLast = 0x4F444354;

    ComPtr<IKtReadMeta> MetaOf(IKtReadFile* file) const {
        ComPtr<IKtReadMeta> meta;
        EXPECT_EQ(file->GetMeta(meta.OutVoid()), S_OK);
        return meta;
    }
    static std::string Value(IKtReadMeta* meta, uint32_t key, HRESULT result, int32_t size = 40) {
        WCHAR text[40] = W("untouched");
        EXPECT_EQ(meta->GetValue(key, text, size), result) << key;
        return platform::Utf8(text);
    }
};

TEST_F(ReadMeta, GivesTheTimecodesOfTheFirstAndTheLastFrame) {
    const auto file = OpenFile();
    const auto meta = MetaOf(file.Get());
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK), "36005000000");
    EXPECT_EQ(Value(meta.Get(), kLast, S_OK), "36104583333");
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK, 5), "3600");
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK, 1), "");
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK, 0), "untouched");
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK, -9), "untouched");
    EXPECT_EQ(Value(meta.Get(), kFirst + 1, S_FALSE), "untouched");
    EXPECT_EQ(meta->GetValue(0, nullptr, 40), S_FALSE);
    EXPECT_EQ(meta->GetValue(kFirst, nullptr, 40), S_OK);

    for (const uint64_t frames : {1u, 0u}) {
        Told().clip.frames = frames;
        EXPECT_EQ(Value(meta.Get(), kLast, S_OK), "36005000000") << frames;
    }
    Told().clip.first_timecode = nullptr;
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK), "0");
    Told().clip.first_timecode = "00:00:01:05";
    Told().clip.frame_rate = 0.0f;
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK), "10000000");
}

TEST_F(ReadMeta, NeedsALoadedClip) {
    const auto empty = EmptyFile();
    EXPECT_EQ(Value(MetaOf(empty.Get()).Get(), kFirst, E_UNEXPECTED), "untouched");
    const auto file = MeasuredFile();
    const auto meta = MetaOf(file.Get());
    EXPECT_EQ(Value(meta.Get(), kFirst, E_UNEXPECTED), "untouched");
    EXPECT_EQ(Value(meta.Get(), 7, E_UNEXPECTED), "untouched");
    EXPECT_EQ(file->Open(0, 0), S_OK);
    EXPECT_EQ(Value(meta.Get(), kFirst, S_OK), "36005000000");
}

}  // namespace
}  // namespace reader_tests
