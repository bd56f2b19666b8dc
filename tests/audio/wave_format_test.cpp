// The system's format record: how it is filled, what makes two of them equal, and how it is copied out.
#include "audio/wave_format.h"

#include <cstring>

#include "audio/sample_data.h"
#include "audio/wfx.h"
#include "audio/wfx_copy.h"
#include "platform/memory.h"
#include "support/fail_each.h"

namespace clipfio::audio {
namespace {

// Memory for records with extra data, dirty at the start, at an odd address: fields are compared by value (+), since no
// reference may bind to them there.
template <class T>
class Room {
  public:
    explicit Room(size_t bytes) : bytes_(bytes + 3, 0xEE) {}
    T* operator->() { return Get(); }
    T& operator*() { return *Get(); }
    T* Get() { return reinterpret_cast<T*>(bytes_.data() + 1); }
    uint8_t At(size_t offset) const { return bytes_[offset + 1]; }
    uint8_t* Bytes(size_t offset) { return bytes_.data() + 1 + offset; }
    // Nothing was written behind the room.
    [[nodiscard]] bool EndIsIntact() const { return bytes_[bytes_.size() - 2] == 0xEE && bytes_.back() == 0xEE; }

  private:
    std::vector<uint8_t> bytes_;
};

// A platform record with `extra` bytes behind its form, numbered from 1.
Room<tWAVEFORMATEX> Source(uint16_t tag, uint16_t bits, uint16_t extra, bool extensible, uint32_t mask = 0) {
    const size_t form = extensible ? 40 : 18;
    Room<tWAVEFORMATEX> room(form + extra);
    const WfxFields fields = {tag, 2, 48000, 6000, 24, bits};
    extensible ? WriteExtensible(room.Get(), fields, mask) : WritePlain(room.Get(), fields);
    room->cbSize = static_cast<uint16_t>(room->cbSize + extra);
    for (size_t i = 0; i < extra; ++i) *room.Bytes(form + i) = static_cast<uint8_t>(i + 1);
    return room;
}

Room<_ktwaveformat> RecordOf(tWAVEFORMATEX* wfx, uint32_t size) {
    Room<_ktwaveformat> record(size);
    record->Init(size, wfx);
    EXPECT_TRUE(record.EndIsIntact());
    return record;
}

// Size, sample type, rate, channels, block align, mask, flags and bytes a second.
std::vector<uint32_t> Facts(const _ktwaveformat& r) {
    return {r.size,        r.sampleType, r.samplesPerSecond,     r.channels, r.blockAlign,
            r.channelMask, r.flags,      r.averageBytesPerSecond};
}
using Numbers = std::vector<uint32_t>;

TEST(WaveFormat, InitFromASampleType) {
    Room<_ktwaveformat> record(48);
    record->Init(44100, KTSAMPLETYPE_PCM24, 6, 0x3F, 48);
    EXPECT_EQ(Facts(*record), (Numbers{32, KTSAMPLETYPE_PCM24, 44100, 6, 18, 0x3F, 0, 44100 * 18}));
    for (size_t i = 32; i < 48; ++i) EXPECT_EQ(record.At(i), 0);
    EXPECT_TRUE(record.EndIsIntact());
    EXPECT_EQ(record->FormatTag(), 1u);
    EXPECT_EQ(record->BitsPerSample(), 24u);
    EXPECT_EQ(record->BytesPerSample(), 3u);
    EXPECT_FALSE(record->IsCompressed());

    Room<_ktwaveformat> small(32);
    small->Init(48000, KTSAMPLETYPE_FLOAT64, 9000, 0, 5);  // a size below 33 clears 32 bytes
    constexpr uint32_t kCut = 72000 & 0xFFFF;
    EXPECT_EQ(Facts(*small), (Numbers{32, KTSAMPLETYPE_FLOAT64, 48000, 9000, kCut, 0, 0, kCut * 48000}));
    EXPECT_TRUE(small.EndIsIntact());
    small->channels = 3;
    EXPECT_EQ(small->UpdateBlockAlign(), 24u);
    EXPECT_EQ(Facts(*small), (Numbers{32, KTSAMPLETYPE_FLOAT64, 48000, 3, 24, 0, 0, 24 * 48000}));
}

TEST(WaveFormat, InitFromTagAndBits) {
    _ktwaveformat record;
    record.InitAsWfx(1, 48000, 20, 2, 0, 32);
    EXPECT_EQ(Facts(record), (Numbers{32, KTSAMPLETYPE_PCM24, 48000, 2, 6, 0, 0, 6 * 48000}));
    record.InitAsWfx(0x55, 48000, 12, 2, 3, 32);
    EXPECT_EQ(Facts(record), (Numbers{32, KTSAMPLETYPE_NONE, 48000, 2, 3, 3, _ktwaveformat::kOpaque, 3 * 48000}));
    EXPECT_EQ(record.FormatTag(), 0x55u);
    EXPECT_EQ(record.BitsPerSample(), 12u);
    EXPECT_EQ(record.BytesPerSample(), 1u);
    EXPECT_TRUE(record.IsCompressed());
    record.blockAlign = 77;
    EXPECT_EQ(record.UpdateBlockAlign(), 77u);
}

TEST(WaveFormat, InitFromAPlatformRecord) {
    // The block align is put right for PCM, and taken as it is for the others.
    Room<tWAVEFORMATEX> pcm = Source(1, 20, 0, false);
    EXPECT_EQ(Facts(*RecordOf(pcm.Get(), 64)), (Numbers{32, KTSAMPLETYPE_PCM24, 48000, 2, 6, 0, 0, 6000}));
    Room<tWAVEFORMATEX> extensible = Source(3, 32, 0, true, 0x30);
    EXPECT_EQ(Facts(*RecordOf(extensible.Get(), 32)),
              (Numbers{32, KTSAMPLETYPE_FLOAT32, 48000, 2, 24, 0x30, _ktwaveformat::kFromExtensible, 6000}));
}

TEST(WaveFormat, AZeroSubFormatIsReadByItsBits) {
    const struct {
        uint16_t bits;
        uint32_t type;
    } kRows[] = {{8, 16}, {16, 17}, {24, 18}, {32, 32}, {64, 33}, {12, 0}};
    for (const auto& row : kRows) {
        for (const uint16_t extra : std::initializer_list<uint16_t>{0, 22, 24}) {
            WAVEFORMATEXTENSIBLE format[2] = {};
            tWAVEFORMATEX& wfx = format[0].Format;
            wfx = {0xFFFE, 2, 48000, 0, static_cast<uint16_t>(row.bits / 8 * 2), row.bits, extra};
            wfx.nAvgBytesPerSec = 48000u * wfx.nBlockAlign;
            EXPECT_EQ(+RecordOf(&wfx, 64)->sampleType, extra == 24 ? 0 : row.type) << row.bits << ", " << extra;
            wfx.nAvgBytesPerSec -= 1;
            EXPECT_EQ(+RecordOf(&wfx, 64)->sampleType, 0u);
        }
    }
}

TEST(WaveFormat, KeepsExtraDataOfOpaqueFormats) {
    const struct {
        uint16_t tag, bits, extra;
        bool extensible;
        uint32_t room, kept;
    } kRows[] = {
        {0x55, 0, 12, false, 64, 12},       {0x55, 0, 12, false, 46, 12},  {0x55, 0, 12, false, 45, 11},
        {0x55, 0, 12, false, 34, 0},        {0x55, 0, 12, false, 33, 0},   {0x55, 0, 12, false, 32, 0},
        {0x55, 0, 1500, false, 2000, 1024}, {0x161, 16, 10, true, 64, 10}, {0x161, 16, 0, true, 64, 0},
        {1, 12, 12, false, 64, 0},          {3, 16, 12, false, 64, 0},     {1, 16, 12, false, 64, 0},
    };
    for (const auto& row : kRows) {
        Room<tWAVEFORMATEX> source = Source(row.tag, row.bits, row.extra, row.extensible);
        Room<_ktwaveformat> record = RecordOf(source.Get(), row.room);
        EXPECT_EQ(+record->size, 32 + row.kept) << row.tag << ", " << row.room;
        ASSERT_EQ(ExtraLength(*record), row.kept);
        for (size_t i = 0; i < row.kept; ++i) ASSERT_EQ(record.At(34 + i), static_cast<uint8_t>(i + 1));
    }
}

TEST(WaveFormat, TheSizeFieldGuardsTheExtraLength) {
    Room<_ktwaveformat> record(64);
    record->Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 64);
    *record.Bytes(32) = 200;
    EXPECT_EQ(ExtraLength(*record), 0u);
    record->size = 33;
    EXPECT_EQ(ExtraLength(*record), 0u);
    record->size = 60;
    EXPECT_EQ(ExtraLength(*record), 28u);
    record->size = 0xFFFFFFFF;
    EXPECT_EQ(ExtraLength(*record), 200u);
    *record.Bytes(33) = 0xFF;
    EXPECT_EQ(ExtraLength(*record), 1024u);
}

TEST(WaveFormatEquality, OfRecords) {
    _ktwaveformat a, b;
    a.Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 32);
    const auto with = [&](uint32_t mask) {
        b.Init(48000, KTSAMPLETYPE_PCM16, 2, mask, 32);
        b.blockAlign = 99;  // never compared
        b.averageBytesPerSecond = 99;
        return a == b;
    };
    EXPECT_TRUE(with(0));
    EXPECT_TRUE(with(3));
    EXPECT_FALSE(with(1));
    b.Init(44100, KTSAMPLETYPE_PCM16, 2, 0, 32);
    EXPECT_FALSE(a == b);
    b.Init(48000, KTSAMPLETYPE_PCM16BE, 2, 0, 32);
    EXPECT_FALSE(a == b);
    b.Init(48000, KTSAMPLETYPE_PCM16, 1, 0, 32);
    EXPECT_FALSE(a == b);
}

TEST(WaveFormatEquality, OfOpaqueRecordsAndTheirSources) {
    using Record = Room<_ktwaveformat>;
    const std::pair<const char*, void (*)(Record&)> kChanges[] = {
        {"bits", [](Record& r) { r->bitsPerSample = 17; }},
        {"bytes a second", [](Record& r) { r->averageBytesPerSecond = 1; }},
        {"tag", [](Record& r) { r->formatTag = 1; }},
        {"extra data", [](Record& r) { *r.Bytes(43) = 0; }},
        {"extra length", [](Record& r) { *r.Bytes(32) = 9; }},
        {"flag", [](Record& r) { r->flags &= ~_ktwaveformat::kOpaque; }},
    };
    for (const bool extensible : {false, true}) {
        Room<tWAVEFORMATEX> source = Source(0x161, 16, 10, extensible, 0x30);
        Record record = RecordOf(source.Get(), 64);
        EXPECT_TRUE(*record == *source);
        for (const auto& [name, change] : kChanges) {
            Record other = record;
            EXPECT_TRUE(*record == *other);
            change(other);
            EXPECT_FALSE(*record == *other) << name;
        }
        source->cbSize = static_cast<uint16_t>(source->cbSize - 1);
        EXPECT_FALSE(*record == *source);
        Record other = RecordOf(source.Get(), 64);
        *other.Bytes(42) = 0;
        EXPECT_FALSE(*other == *source);
    }
}

TEST(WaveFormatEquality, OfARecordAndAPlatformRecord) {
    _ktwaveformat a;
    a.Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 32);
    EXPECT_TRUE(a == *Source(1, 16, 0, false));
    EXPECT_FALSE(a == *Source(1, 24, 0, false));
    EXPECT_TRUE(a == *Source(1, 16, 0, true, 3));
    EXPECT_FALSE(a == *Source(1, 16, 0, true, 12));
    a.channelMask = 12;
    EXPECT_FALSE(a == *Source(1, 16, 0, false));
    EXPECT_TRUE(a == *Source(1, 16, 0, true, 12));
}

// --- Copies to the platform's record.

constexpr auto kIfNeeded = KTWAVEFORMAT_COPY_DEST_IFNEEDED;
constexpr auto kPlain = KTWAVEFORMAT_COPY_DEST_PLAIN;
constexpr auto kNoMask = KTWAVEFORMAT_COPY_DEST_NOMASK;
constexpr auto kMulti = KTWAVEFORMAT_COPY_DEST_MULTI;
constexpr auto kExtensible = KTWAVEFORMAT_COPY_DEST_EXTENSIBLE;

const struct {
    KTWAVEFORMAT_COPY_DEST dest;
    uint32_t channels, mask, flags, room;
    uint32_t writtenMask;  // 0: the plain form
} kUncompressedCopies[] = {
    {kIfNeeded, 2, 0, 0, 40, 0},     {kIfNeeded, 2, 3, 0, 40, 0},    {kIfNeeded, 2, 12, 0, 40, 12},
    {kIfNeeded, 2, 0, 0x10, 40, 3},  {kIfNeeded, 2, 0, 0x10, 39, 0}, {kIfNeeded, 6, 63, 0, 40, 63},
    {kPlain, 2, 0, 0x10, 40, 0},     {kPlain, 2, 12, 0, 40, 12},     {kPlain, 2, 12, 0, 18, 0},
    {kNoMask, 2, 12, 0x10, 40, 0},   {kNoMask, 6, 63, 0, 40, 0},     {kMulti, 2, 0, 0x10, 40, 0},
    {kMulti, 3, 0, 0, 40, 7},        {kExtensible, 1, 0, 0, 40, 1},  {kExtensible, 1, 0, 0, 39, 0},
    {kExtensible, 2, 255, 0, 40, 3},
};

TEST(WfxCopy, FormOfAnUncompressedFormat) {
    for (const auto& row : kUncompressedCopies) {
        _ktwaveformat record;
        record.Init(48000, KTSAMPLETYPE_PCM24IN32, row.channels, row.mask, 32);
        record.flags = row.flags;
        Room<tWAVEFORMATEX> out(row.room);
        EXPECT_EQ(KtAudio_GeneralCopyWfx(out.Get(), row.room, &record, row.dest), out.Get());
        SCOPED_TRACE(testing::Message() << "dest " << row.dest << ", mask " << row.mask << ", room " << row.room);
        EXPECT_TRUE(out.EndIsIntact());
        EXPECT_EQ(KtAudio_GetSampleType(out.Get()), KTSAMPLETYPE_PCM24IN32);
        EXPECT_EQ(+out->nBlockAlign, 4 * row.channels);
        EXPECT_EQ(+out->wFormatTag, row.writtenMask ? 0xFFFE : 0xFE00);
        EXPECT_EQ(+out->cbSize, row.writtenMask ? 22 : 0);
        if (row.writtenMask) {
            EXPECT_EQ(ReadExtensiblePart(out.Get()).mask, row.writtenMask);
        }
    }
}

TEST(WfxCopy, FormAndExtraDataOfAnOpaqueFormat) {
    const struct {
        KTWAVEFORMAT_COPY_DEST dest;
        uint32_t mask, room, form, extra;
    } kRows[] = {
        {kIfNeeded, 0, 100, 18, 10},  {kIfNeeded, 0, 24, 18, 6},  {kIfNeeded, 0, 18, 18, 0},
        {kIfNeeded, 12, 100, 40, 10}, {kIfNeeded, 12, 44, 40, 4}, {kIfNeeded, 12, 39, 18, 10},
        {kPlain, 12, 50, 40, 10},     {kPlain, 12, 49, 18, 10},   {kNoMask, 12, 50, 40, 10},
        {kExtensible, 0, 42, 40, 2},  {kMulti, 0, 100, 18, 10},
    };
    Room<tWAVEFORMATEX> source = Source(0x161, 16, 10, false);
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::Message() << "dest " << row.dest << ", mask " << row.mask << ", room " << row.room);
        Room<_ktwaveformat> record = RecordOf(source.Get(), 64);
        record->channelMask = row.mask;
        Room<tWAVEFORMATEX> out(row.room);
        KtAudio_GeneralCopyWfx(out.Get(), row.room, record.Get(), row.dest);
        EXPECT_TRUE(out.EndIsIntact());
        EXPECT_EQ(+out->wFormatTag, row.form == 40 ? 0xFFFE : 0x161);
        EXPECT_EQ(+out->cbSize, row.form - 18 + row.extra);
        EXPECT_EQ(+out->nBlockAlign, 24);
        EXPECT_EQ(+out->nAvgBytesPerSec, 6000u);
        for (uint32_t i = 0; i < row.extra; ++i) EXPECT_EQ(out.At(row.form + i), i + 1);
        if (row.form == 40) {
            const ExtensiblePart part = ReadExtensiblePart(out.Get());
            EXPECT_EQ(part.mask, row.dest == kNoMask || row.mask == 0 ? 3u : row.mask);
            EXPECT_EQ(TagOfSubFormat(part.subFormat), 0x161);
        }
    }
}

TEST(WfxCopy, TooLittleRoomWritesNothing) {
    _ktwaveformat record;
    record.Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 32);
    Room<tWAVEFORMATEX> out(17);
    EXPECT_EQ(KtAudio_GeneralCopyWfx(out.Get(), 17, &record, kIfNeeded), out.Get());
    EXPECT_EQ(out.At(0), 0xEE);
}

TEST(WfxCopy, OfAPlatformRecordKeeps94BytesOfExtraData) {
    Room<tWAVEFORMATEX> source = Source(0x55, 0, 200, false);
    Room<tWAVEFORMATEX> out(300);
    KtAudio_CopyWfx(out.Get(), 300, source.Get(), kIfNeeded);
    EXPECT_EQ(+out->cbSize, 94);
    EXPECT_EQ(out.At(18 + 93), 94);
    _ktwaveformat_wfxplus plus;
    plus.Init(source.Get(), kIfNeeded);
    EXPECT_EQ(static_cast<const tWAVEFORMATEX*>(plus)->cbSize, 94);
    EXPECT_EQ(std::memcmp(&plus, out.Get(), 18 + 94), 0);
    WAVEFORMATEXTENSIBLE extensible;
    Room<tWAVEFORMATEX> pcm = Source(1, 16, 0, false);
    KtAudio_CopyWfExt(&extensible, pcm.Get(), kExtensible);
    EXPECT_EQ(KtAudio_GetSampleType(&extensible.Format), KTSAMPLETYPE_PCM16);
    EXPECT_EQ(extensible.dwChannelMask, 3u);
}

TEST(WfxCopy, HelpersAreUsedAsPlatformRecords) {
    Room<tWAVEFORMATEX> source = Source(0x55, 0, 30, false);
    Room<_ktwaveformat> record = RecordOf(source.Get(), 128);
    const _ktwaveformat_wfxcopyhelper plain(*record);
    EXPECT_EQ(static_cast<const tWAVEFORMATEX*>(plain)->cbSize, 0);
    EXPECT_EQ(static_cast<const tWAVEFORMATEX*>(plain)->wFormatTag, 0x55);
    const _ktwaveformat_wfxecopyhelper longer(*record);
    EXPECT_EQ(static_cast<const tWAVEFORMATEX*>(longer)->cbSize, 22);
    record->channelMask = 12;
    const _ktwaveformat_wfxecopyhelper extensible(*record);
    EXPECT_EQ(static_cast<const tWAVEFORMATEX*>(extensible)->wFormatTag, 0xFFFE);
    EXPECT_EQ(static_cast<const tWAVEFORMATEX*>(extensible)->cbSize, 22);
}

TEST(WfxCopy, AllocatedBlocks) {
    const struct {
        KTWAVEFORMAT_COPY_DEST dest;
        bool extensibleSource;
        uint32_t bytes;
    } kRows[] = {
        {kIfNeeded, false, 30}, {kIfNeeded, true, 52},    {kPlain, false, 30},
        {kNoMask, false, 30},   {kPlain, true, 52},       {kNoMask, true, 30},
        {kMulti, false, 30},    {kExtensible, false, 52}, {kExtensible, true, 52},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::Message() << "dest " << row.dest << ", extensible " << row.extensibleSource);
        Room<tWAVEFORMATEX> source = Source(0x161, 16, 12, row.extensibleSource, row.extensibleSource ? 12 : 0);
        tWAVEFORMATEX* const copy = KtAudio_AllocAndCopyWfx(source.Get(), row.dest);
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(18u + copy->cbSize, row.bytes);
        EXPECT_EQ(reinterpret_cast<const uint8_t*>(copy)[row.bytes - 1], 12);
        EXPECT_EQ(KtAudio_GetWaveFormatTag(copy), 0x161);
        const HGLOBAL block = GlobalHandle(copy);
        EXPECT_GE(GlobalSize(block), row.bytes);
        GlobalUnlock(block);
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST(WfxCopy, AllocationThatFailsGivesNull) {
    _ktwaveformat record;
    record.Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 32);
    support::FailEach<support::FailingCall>([&] { return KtAudio_AllocAndCopyWfx(&record, kIfNeeded); },
                                            [](tWAVEFORMATEX* copy, bool hit) {
                                                EXPECT_EQ(copy == nullptr, hit);
                                                if (copy) GlobalFree(GlobalHandle(copy));
                                            });
}

TEST(RecordCopy, SizesAndExtraData) {
    const struct {
        uint32_t extra, room, kept;
    } kRows[] = {{10, 64, 10}, {10, 44, 10}, {10, 43, 0},        {10, 33, 0},       {10, 32, 0},
                 {10, 0, 0},   {0, 64, 0},   {1024, 1058, 1024}, {1024, 2000, 1024}};
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::Message() << row.extra << " in " << row.room);
        Room<tWAVEFORMATEX> source = Source(0x55, 0, static_cast<uint16_t>(row.extra), false);
        Room<_ktwaveformat> record = RecordOf(source.Get(), 34 + row.extra);
        const uint32_t room = row.room ? row.room : 32;
        Room<_ktwaveformat> out(room);
        EXPECT_EQ(KtAudio_GeneralCopyKtWaveFormat(out.Get(), row.room, record.Get(), kIfNeeded), out.Get());
        EXPECT_TRUE(out.EndIsIntact());
        EXPECT_EQ(+out->size, 32 + row.kept);
        EXPECT_EQ(+out->formatTag, 0x55);
        ASSERT_EQ(ExtraLength(*out), row.kept);
        // 32 + extra bytes were copied: all but the last two of the extra data.
        for (uint32_t i = 0; i + 2 < row.kept; ++i) ASSERT_EQ(out.At(34 + i), static_cast<uint8_t>(i + 1));
        for (size_t i = 34 + row.extra; i < room; ++i) ASSERT_EQ(out.At(i), 0);
    }
}

TEST(RecordCopy, SizeFieldOfZeroAndPartialRooms) {
    _ktwaveformat record;
    record.Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 32);
    record.size = 0;
    Room<_ktwaveformat> out(40);
    KtAudio_GeneralCopyKtWaveFormat(out.Get(), 40, &record, kIfNeeded);
    EXPECT_EQ(+out->size, 32u);
    EXPECT_EQ(+out->samplesPerSecond, 48000u);
    Room<_ktwaveformat> part(16);
    KtAudio_GeneralCopyKtWaveFormat(part.Get(), 16, &record, kIfNeeded);
    EXPECT_TRUE(part.EndIsIntact());
}

}  // namespace
}  // namespace clipfio::audio
