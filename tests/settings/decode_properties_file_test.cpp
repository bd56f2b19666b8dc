#include "settings/decode_properties_file.h"

#include <clocale>
#include <cstdlib>
#include <locale>
#include <random>

#include "platform/text.h"
#include "r3dsdk/sdk_loader.h"
#include "settings/settings_fixture.h"
#include "support/scoped_variable.h"

namespace clipfio {
namespace {

class DecodePropertiesFile : public testing::Test {
  protected:
    MediaPropertyEditor editor_{MediaPropertyEditor::WithoutDecoder{}};

    std::string Save(const DecodeSettingsRecord& record) const {
        MemoryStream stream;
        EXPECT_EQ(editor_.SaveSettings(&stream, record), S_OK);
        return stream.content;
    }

    // Applies a text read in either way, which have to agree.
    DecodeSettingsRecord Apply(const std::string& text, const DecodeSettingsRecord& start = {}) const {
        DecodeSettingsRecord record = start;
        MemoryStream bytes(text);
        EXPECT_EQ(editor_.ApplyFile(record, &bytes), S_OK);
        EXPECT_EQ(bytes.mostBytesAsked, 1u);

        DecodeSettingsRecord inBlocks = start;
        MemoryStream blocks(text);
        EntrySource source(&blocks, EntrySource::Reading::InBlocks);
        const ItemClones clones(editor_.Items());
        EXPECT_EQ(ReadEntries(clones, source), S_OK);
        EXPECT_EQ(blocks.calls, static_cast<int>(text.size() / 4096) + 1) << "a short block is the last";
        clones.ForEach([&](const MediaPropertyItem& item) { item.StoreToSettings(inBlocks); });
        EXPECT_TRUE(SameRecord(record, inBlocks)) << text.substr(0, 200);
        return record;
    }
};

TEST_F(DecodePropertiesFile, HoldsEveryEntryInOrder) {
    const ItemClones clones(editor_.Items());
    const DecodeSettingsRecord record = DistinctRecord();
    clones.ForEach([&](MediaPropertyItem& item) { item.LoadFromSettings(record); });
    MemoryStream stream;
    EXPECT_EQ(WriteEntries(clones, {"xx_YY", ',', "SDK 1.2"}, &stream), S_OK);
    EXPECT_EQ(stream.content, std::string("File Content=R3D decode properties|File Version=1.0|File Locale=xx_YY|"
                                          "File DecimalPoint=,|R3DSDK Version=SDK 1.2|") +
                                  kDistinctEntries);
    EXPECT_EQ(stream.calls, 1 + 69);
}

TEST_F(DecodePropertiesFile, HeaderOnlyWhereNothingIsSet) {
    MemoryStream stream;
    EXPECT_EQ(WriteEntries(editor_.Items(), {"", '.', "a|b"}, &stream), S_OK);
    EXPECT_EQ(stream.content,
              "File Content=R3D decode properties|File Version=1.0|File Locale=|File DecimalPoint=.|"
              "R3DSDK Version=ab|")
        << "a bar inside a value would swallow the first setting";
}

TEST_F(DecodePropertiesFile, DefaultRecord) {
    const std::string text = Save(DecodeSettingsRecord{});
    const FileHeader header = FileHeader::Current();
    const std::string expected =
        "File Content=R3D decode properties|File Version=1.0|File Locale=" + header.locale +
        "|File DecimalPoint=" + header.decimalPoint + "|R3DSDK Version=" + SdkVersionText() +
        "|Brightness=0|ColorTemperature=5600|ColorVersion=3|Contrast=0|DEB=0|DRX=0|ExposureCompensation=0|FLUT=0|"
        "GainBlue=1|GainGreen=1|GainRed=1|ImageColorSpace=11|ImageDenoise=0|ImageDetail=2|ImageGammaCurve=12|"
        "ImageISO=320|ImageOLPFCompensation=0|LggGainBlue=1|LggGainGreen=1|LggGainRed=1|LggGammaBlue=1|"
        "LggGammaGreen=1|LggGammaRed=1|LggLiftBlue=0|LggLiftGreen=0|LggLiftRed=0|Saturation=1|Shadow=0|Tint=0|";
    ASSERT_EQ(text.substr(0, expected.size()), expected);
    const char* const kStraight[] = {"0", "0.25", "0.5", "0.75", "1"};
    EXPECT_EQ(text.substr(expected.size()), CurveEntries([&](const char*, int i) { return kStraight[i / 2]; }));
}

TEST_F(DecodePropertiesFile, ReadsBackWhatItWrote) {
    DecodeSettingsRecord start;
    start.unlisted8 = 7;
    start.pdLogBlackPoint = 8;
    DecodeSettingsRecord expected = DistinctRecord();
    expected.unlisted8 = 7;
    expected.pdLogBlackPoint = 8;
    EXPECT_TRUE(SameRecord(Apply(Save(DistinctRecord()), start), expected));
}

struct TextCase {
    const char* name;
    std::string_view text;
    void (*expect)(DecodeSettingsRecord&);  // what the text makes of a record with tint 7 and contrast 0.75
};

using namespace std::string_view_literals;
using Record = DecodeSettingsRecord;

const TextCase kTexts[] = {
    {"empty", ""sv, [](Record&) {}},
    {"no last bar", "Contrast=0|Tint=5"sv, [](Record& r) { r.contrast = 0, r.tint = 5; }},
    {"ends inside a key", "Tint=5|Contras"sv, [](Record& r) { r.tint = 5; }},
    {"ends behind the sign of equality", "Tint="sv, [](Record& r) { r.tint = 0; }},
    {"line break in front of a key", "\nTint=5|Contrast=0.5|"sv, [](Record& r) { r.contrast = 0.5f; }},
    {"blank in front of a key", " Tint=5|Contrast=0.5|"sv, [](Record& r) { r.contrast = 0.5f; }},
    {"lower-case key", "tint=5|"sv, [](Record&) {}},
    {"key with a zero byte", "Tint\0=5|Contrast=0.5|"sv, [](Record& r) { r.contrast = 0.5f; }},
    {"empty key", "=5|Tint=3|"sv, [](Record& r) { r.tint = 3; }},
    {"the same key twice", "Tint=1|Tint=2|"sv, [](Record& r) { r.tint = 2; }},
    {"keys in any order", "Tint=1|Brightness=2|Contrast=0.5|"sv,
     [](Record& r) { r.tint = 1, r.brightness = 2, r.contrast = 0.5f; }},
    {"stray bar", "x|Tint=5|Contrast=0.5|"sv, [](Record& r) { r.contrast = 0.5f; }},
    {"second sign of equality", "Tint=1=2|Contrast=0.5|"sv, [](Record& r) { r.tint = 1, r.contrast = 0.5f; }},
    {"another maker and version", "File Content=?|File Version=99|Future=1|Tint=2|"sv, [](Record& r) { r.tint = 2; }},
    {"curve index without place", "UserCurve[10]=1|UserCurve[-1]=1|UserCurve[]=1|UserCurve=1|"sv, [](Record&) {}},
    {"no number", "Tint=abc|"sv, [](Record& r) { r.tint = 0; }},
    {"number with a tail", "Tint= \t+2.5e1x|"sv, [](Record& r) { r.tint = 25; }},
    {"comma", "Tint=1,5|"sv, [](Record& r) { r.tint = 1; }},
    {"zero byte inside a value", "Tint=1\0002|Contrast=0.5|"sv, [](Record& r) { r.tint = 1, r.contrast = 0.5f; }},
    {"beyond the limits", "Tint=-5000|"sv, [](Record& r) { r.tint = -5000; }},
    {"beyond a float", "Tint=1e300|"sv, [](Record& r) { r.tint = std::numeric_limits<float>::infinity(); }},
    {"not offered", "ColorVersion=9|ImageISO=321|"sv, [](Record& r) { r.colorVersion = 9, r.imageIso = 321; }},
    {"negative combo", "ImageDetail=-1|ImageISO=-2|"sv,
     [](Record& r) { r.imageDetail = 0xFFFFFFFF, r.imageIso = 0xFFFFFFFFFFFFFFFE; }},
    {"beyond 32 bits", "ImageDetail=99999999999999999999|ImageDenoise=4294967296|"sv,
     [](Record& r) { r.imageDetail = r.imageDenoise = 0x7FFFFFFF; }},
    {"combo with a fraction", "ImageDetail=1.9|ImageDenoise=x|"sv,
     [](Record& r) { r.imageDetail = 1, r.imageDenoise = 0; }},
    {"only one is true", "DEB=1|"sv, [](Record&) {}},
    {"two is not true", "DEB=2|"sv, [](Record& r) { r.deb = 0; }},
    {"nor is a word", "DEB=true|"sv, [](Record& r) { r.deb = 0; }},
};

TEST_F(DecodePropertiesFile, ReadsAnyText) {
    DecodeSettingsRecord start = DistinctRecord();  // no other field may change, whatever kind it is of
    start.tint = 7;
    start.contrast = 0.75f;
    for (const TextCase& row : kTexts) {
        DecodeSettingsRecord expected = start;
        row.expect(expected);
        EXPECT_TRUE(SameRecord(Apply(std::string(row.text), start), expected)) << row.name;
    }
}

TEST_F(DecodePropertiesFile, EntriesAcrossTheEdgesOfBlocks) {
    for (size_t length = 4050; length < 4110; ++length) {
        const std::string text = "Unknown=" + std::string(length, 'x') + "|Tint=12.5|ImageOLPFCompensation=3|";
        const DecodeSettingsRecord record = Apply(text);
        ASSERT_EQ(record.tint, 12.5f) << length;
        ASSERT_EQ(record.imageOlpfCompensation, 3u) << length;
    }
}

TEST_F(DecodePropertiesFile, HugeTexts) {
    const std::string megabyte(1 << 20, '7');
    DecodeSettingsRecord record = Apply("Tint=" + megabyte + "|ImageDetail=" + megabyte + "|Contrast=0.5|");
    EXPECT_EQ(record.tint, std::numeric_limits<float>::infinity());
    EXPECT_EQ(record.imageDetail, 0x7FFFFFFFu);
    EXPECT_EQ(record.contrast, 0.5f);
    record = Apply(megabyte + "=1|Contrast=0.5|" + megabyte);
    EXPECT_EQ(record.contrast, 0.5f);
    EXPECT_EQ(Apply("Tint=" + std::string(60000, '0') + "1.5|").tint, 1.5f) << "zeros in front";
}

// The short way for plain numbers against the runtime's own.
TEST(EntrySource, NumbersAreThoseOfAtof) {
    std::mt19937 random(1);
    for (int round = 0; round < 200000; ++round) {
        std::string text;
        const size_t length = random() % (round % 2 ? 8 : 20);
        for (size_t i = 0; i < length; ++i) text += "0123456789012345678901234567890123456789.-+e "[random() % 45];
        if (random() % 3 == 0) text.insert(0, "-");
        MemoryStream stream(text);
        EntrySource source(&stream, EntrySource::Reading::InBlocks);
        ASSERT_EQ(source.ReadUntil('|'), S_FALSE);
        const double expected = std::atof(text.c_str());
        const double number = source.Number();
        ASSERT_EQ(std::memcmp(&number, &expected, sizeof number), 0) << text;
    }
}

TEST_F(DecodePropertiesFile, EveryFailingReadLeavesTheRecordAlone) {
    const std::string text = "Tint=1|Unknown=2|Contrast=0.5|";
    const int calls = static_cast<int>(text.size()) + 1;  // the end is asked for once
    for (const HRESULT atEnd : {S_FALSE, S_OK}) {
        for (int n = 0; n <= calls; ++n) {
            MemoryStream stream(text);
            stream.atEnd = atEnd;
            stream.failAtCall = n;
            DecodeSettingsRecord record;
            EXPECT_EQ(editor_.ApplyFile(record, &stream), n < calls ? STG_E_ACCESSDENIED : S_OK) << n;
            EXPECT_EQ(record.contrast, n < calls ? 0.0f : 0.5f);
            EXPECT_TRUE(n == calls || SameRecord(record, DecodeSettingsRecord{}));
        }
    }
}

TEST_F(DecodePropertiesFile, EveryFailingWriteEndsTheText) {
    const std::string whole = Save(DistinctRecord());
    constexpr int kCalls = 70;
    for (const ULONG missing : {0u, 1u}) {
        for (int n = 0; n <= kCalls; ++n) {
            MemoryStream stream;
            stream.failAtCall = n;
            stream.shortWriteBy = missing;
            const HRESULT failure = missing ? STG_E_MEDIUMFULL : STG_E_ACCESSDENIED;
            EXPECT_EQ(editor_.SaveSettings(&stream, DistinctRecord()), n < kCalls ? failure : S_OK) << n;
            EXPECT_EQ(stream.content, whole.substr(0, stream.content.size()));
            EXPECT_EQ(stream.calls, std::min(n + 1, kCalls));
        }
    }
}

// Numbers follow the program's own locales, never the user's.
class Locales : public DecodePropertiesFile {
  protected:
    ~Locales() override {
        std::locale::global(cppLocale_);
        std::setlocale(LC_NUMERIC, cLocale_.c_str());
    }
    const std::locale cppLocale_;
    const std::string cLocale_ = std::setlocale(LC_NUMERIC, nullptr);
};

struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

TEST_F(Locales, TheUsersLocaleStandsInTheHeaderOnly) {
    for (const char* name : {"C", "tr_TR.UTF-8", "no_SUCH.locale"}) {
        const support::ScopedVariable variable(W("LC_ALL"), platform::Wide(name).c_str());
        if (const char* seen = std::getenv("LC_ALL"); !seen || std::string(seen) != name) {
            GTEST_SKIP() << "the runtime keeps an environment of its own here";
        }
        std::string expected;
        char point = '.';
        try {
            const std::locale user(name);
            expected = name;
            point = std::use_facet<std::numpunct<char>>(user).decimal_point();
        } catch (const std::runtime_error&) {
        }
        const FileHeader header = FileHeader::Current();
        EXPECT_EQ(header.locale, expected);
        EXPECT_EQ(header.decimalPoint, point);
        EXPECT_NE(Save(DistinctRecord()).find("|ExposureCompensation=1.5|"), std::string::npos) << name;
        EXPECT_EQ(std::locale(), cppLocale_);
        EXPECT_EQ(std::setlocale(LC_NUMERIC, nullptr), cLocale_);
    }
}

TEST_F(Locales, WritingFollowsTheStreamLocaleOfTheProgram) {
    std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_NE(Save(DistinctRecord()).find("|ExposureCompensation=1,5|"), std::string::npos);
}

TEST_F(Locales, ReadingFollowsTheRuntimeLocaleOfTheProgram) {
    if (!std::setlocale(LC_NUMERIC, "tr_TR.UTF-8")) GTEST_SKIP() << "no locale with a comma here";
    EXPECT_EQ(Apply("Tint=1,5|").tint, 1.5f);
    EXPECT_EQ(Apply("Tint=1.5|").tint, 1.0f);
}

struct PathCase {
    WString clip;
    WString file;  // empty: refused
    HRESULT result = S_OK;
};

TEST(DecodePropertiesPath, StandsBesideTheClip) {
    const HRESULT tooLong = HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
    const WString longest = W("C:\\") + WString(246, W('x'));
    const PathCase kCases[] = {
        {longest + W("x.r3d"), {}, tooLong},          {W("C:\\clips\\A001.r3d"), W("C:\\clips\\A001.KtDecProp")},
        {longest + WString(10, W('x')), {}, tooLong}, {W("/clips/A001.R3D"), W("/clips/A001.KtDecProp")},
        {WString(400, W('x')), {}, tooLong},          {W("C:\\a.b\\clip"), W("C:\\a.b\\clip.KtDecProp")},
        {W("C:\\clips\\"), {}, E_INVALIDARG},         {W("A001.C002.r3d"), W("A001.C002.KtDecProp")},
        {W("clip.KtDecProp"), {}, E_INVALIDARG},      {longest + W(".r3d"), longest + W(".KtDecProp")},
        {W("clip.ktdecprop"), {}, E_INVALIDARG},      {{}, {}, E_INVALIDARG},
        {W("/a.b/clip"), W("/a.b/clip.KtDecProp")},   {W("./clip"), W("./clip.KtDecProp")},
        {W("../clip"), W("../clip.KtDecProp")},       {W("/clips/"), {}, E_INVALIDARG},
    };
    for (const PathCase& row : kCases) {
        WCHAR out[kPathSize] = W("old");
        EXPECT_EQ(MakeDecodePropertiesPath(row.clip.c_str(), out), row.result) << platform::Utf8(row.clip);
        EXPECT_EQ(platform::Utf8(out), platform::Utf8(row.file));
    }
    WCHAR inPlace[kPathSize] = W("x.r3d");
    EXPECT_EQ(MakeDecodePropertiesPath(inPlace, inPlace), S_OK);
    EXPECT_EQ(WStringView(inPlace), W("x.KtDecProp"));
}

}  // namespace
}  // namespace clipfio
