#include <bit>
#include <cstring>
#include <limits>

#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

using fake_decoder::Sample16;
using fake_decoder::Sample8;

class ReadVideoStream : public ReaderTest {};

// One read into memory of this process, with a guard behind it.
struct Read {
    static constexpr uint8_t kUntouched = 0xCC;
    std::vector<uint8_t> memory;
    _ktframeinfo info;
    uint32_t bytes = 0xDDDDDDDD;
    HRESULT result;

    Read(IKtReadVideoStream* video, uint64_t frame, const _ktframerequest& request, uint32_t room)
        : memory(room + 16, kUntouched) {
        std::memset(static_cast<void*>(&info), 0xEE, sizeof info);
        const auto token = TokenOf(memory.data(), room);
        result = video->ReadFrame(frame, &request, &token, &info, &bytes);
    }
    bool MemoryUntouched(std::size_t from = 0) const {
        for (std::size_t i = from; i < memory.size(); ++i) {
            if (memory[i] != kUntouched) return false;
        }
        return true;
    }
};

TEST_F(ReadVideoStream, TellsLengthsAndFormats) {
    Told().clip.width = 11;
    const auto file = MeasuredFile();
    const auto video = VideoOf(file.Get());
    _ktstreaminfo info = Got(video, &IKtReadVideoStream::GetNativeFormat);
    EXPECT_EQ(info.size, 184u);
    EXPECT_EQ(info.kind, 2u);
    EXPECT_EQ(info.length, 0u);
    EXPECT_EQ(Facts(info.frameFormat), (std::vector<double>{64, 24, 1, 0}));
    EXPECT_EQ(info.frameFormat.reserved1, 0xFFFFFFFFu);
    EXPECT_EQ(FormatIn<BITMAPINFOHEADER>(info).biBitCount, 48);
    EXPECT_EQ(FormatIn<BITMAPINFOHEADER>(info).biSizeImage, 6u * 80);  // 66 bytes a row, padded to 80

    // What SetFormat may choose, and what it leaves.
    const struct {
        LONG width, height;
        WORD bits;
        DWORD compression;
        HRESULT result;
        WORD reported;
        DWORD size;
    } kRows[] = {
        {11, 6, 128, 0, S_OK, 128, 11 * 6 * 16}, {11, 6, 48, 0, S_FALSE, 128, 11 * 6 * 16},
        {10, 6, 32, 0, S_OK, 128, 11 * 6 * 16},  {11, 7, 32, 0, S_OK, 128, 11 * 6 * 16},
        {11, 6, 32, 1, S_OK, 128, 11 * 6 * 16},  {11, 6, 32, 0, S_OK, 32, 11 * 6 * 4},
        {11, 6, 0, 0, S_FALSE, 32, 11 * 6 * 4},
    };
    for (const auto& row : kRows) {
        _ktstreaminfo wanted = {};
        BITMAPINFOHEADER bitmap = {};
        bitmap.biWidth = row.width, bitmap.biHeight = row.height;
        bitmap.biBitCount = row.bits, bitmap.biCompression = row.compression;
        std::memcpy(wanted.format, &bitmap, sizeof bitmap);
        EXPECT_EQ(video->SetFormat(&wanted), row.result);
        info = Got(video, &IKtReadVideoStream::GetFormat);
        EXPECT_EQ(FormatIn<BITMAPINFOHEADER>(info).biBitCount, row.reported) << &row - kRows;
        EXPECT_EQ(FormatIn<BITMAPINFOHEADER>(info).biSizeImage, row.size) << &row - kRows;
        EXPECT_EQ(info.length, 0u);
    }
}

TEST_F(ReadVideoStream, FrameFactsFollowTheRequest) {
    Told().clip.width = 4096;
    Told().clip.height = 2161;
    const auto file = MeasuredFile();
    const auto video = VideoOf(file.Get());
    constexpr double kVideoGamma = 2.2222222222222223;
    const double kNan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        uint32_t bits;
        double scale, gamma;
        HRESULT result;
        LONG width, height;
        uint32_t bytes;
        double out_scale, out_gamma;
    } kRows[] = {
        {32, 1.0, 2.2, S_OK, 4096, 2161, 4096 * 2161 * 4, 1.0, 0.0},
        {32, 0.5, 0.0, S_OK, 2048, 1080, 2048 * 2161 * 4 / 2, 0.5, 0.0},  // more than width times height
        {128, 0.25, 0.0, S_OK, 1024, 540, 1024 * 2161 * 16 / 4, 0.25, 0.0},
        {128, 0.3, kVideoGamma, S_OK, 2048, 1080, 2048 * 2161 * 16 / 2, 0.5, kVideoGamma},
        {128, 0.0625, 2.2213, S_OK, 256, 135, 256 * 2161 * 16 / 16, 0.0625, 2.2213},
        {128, 8.0, 2.2211, S_OK, 4096, 2161, 4096 * 2161 * 16, 1.0, 1.0},
        {128, 1.0, 1.0, S_OK, 4096, 2161, 4096 * 2161 * 16, 1.0, 1.0},
        {128, 1.0, kNan, S_OK, 4096, 2161, 4096 * 2161 * 16, 1.0, 1.0},
        {48, 0.5, 0.0, E_INVALIDARG, 0, 0, 0, 0.5, 0.0},
        {0, 1.0, 0.0, E_INVALIDARG, 0, 0, 0, 1.0, 0.0},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(&row - kRows);
        const auto request = Request(row.bits, row.scale, 4, row.gamma);
        uint32_t bytes = 9;
        EXPECT_EQ(video->GetFrameSize(3, &request, &bytes), row.result);
        EXPECT_EQ(bytes, row.bytes);
        _ktframeinfo info;
        std::memset(static_cast<void*>(&info), 0x55, sizeof info);
        EXPECT_EQ(video->GetFrameInfo(0x1234567890, &request, &info), row.result);
        EXPECT_EQ(info.frame, 0x1234567890u);
        EXPECT_EQ(info.scale, row.out_scale);
        EXPECT_EQ(info.bytes, row.bytes);
        const bool good = row.result == S_OK;
        using Doubles = std::vector<double>;
        EXPECT_EQ(Facts(info.frameFormat), good ? (Doubles{64, 24, 1, row.out_gamma}) : Doubles(4));
        EXPECT_EQ(info.frameFormat.reserved1, good ? 0xFFFFFFFFu : 0u);
        const int64_t compression = row.bits == 128 ? 0x4244544B : 0;
        using Numbers = std::vector<int64_t>;
        EXPECT_EQ(Facts(info.bitmap),
                  good ? (Numbers{40, row.width, row.height, 1, row.bits, compression, row.bytes}) : Numbers(7));
        EXPECT_EQ(info.reserved1 + info.reserved2 + info.reserved3[0] + info.reserved3[79], 0u);
    }
}

TEST_F(ReadVideoStream, ReadsPicturesBottomFirst) {
    Told().clip.width = 37;
    Told().clip.height = 19;
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    for (const uint32_t divisor : {1u, 2u, 4u, 8u, 16u}) {
        const uint32_t w = 37 / divisor;
        const uint32_t h = 19 / divisor;
        SCOPED_TRACE(divisor);
        const Read bytes(video.Get(), 5, Request(32, 1.0 / divisor), w * h * 4);
        ASSERT_EQ(bytes.result, S_OK);
        EXPECT_EQ(bytes.bytes, w * h * 4);
        const Read floats(video.Get(), 6, Request(128, 1.0 / divisor), w * h * 16 + 7);
        ASSERT_EQ(floats.result, S_OK);
        EXPECT_EQ(floats.bytes, w * h * 16);
        EXPECT_EQ(floats.info.frame, 6u);
        uint32_t wrong = 0;
        for (uint32_t y = 0; y < h; ++y) {
            const uint32_t from = h - 1 - y;  // the decoder's row
            for (uint32_t x = 0; x < w; ++x) {
                float pixel[4];
                std::memcpy(pixel, floats.memory.data() + (y * w + x) * 16, sizeof pixel);
                for (uint32_t c = 0; c < 4; ++c) {
                    wrong += bytes.memory[(y * w + x) * 4 + c] != Sample8(5, (from * w + x) * 4 + c);
                    const float k = std::bit_cast<float>(0x37800080u);
                    const float expected =
                        c == 3 ? 0.0f : static_cast<float>(Sample16(6, (from * w + x) * 3 + 2 - c)) * k;
                    wrong += std::bit_cast<uint32_t>(pixel[c]) != std::bit_cast<uint32_t>(expected);
                }
            }
        }
        EXPECT_EQ(wrong, 0u);
        EXPECT_TRUE(bytes.MemoryUntouched(bytes.bytes) && floats.MemoryUntouched(floats.bytes));
    }
}

TEST_F(ReadVideoStream, AsksTheDecoderForTheRightJob) {
    Told().clip.width = 37;
    Told().clip.height = 19;
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    const struct {
        uint32_t bits;
        double scale;
        uint32_t quality;
        const char* mode;
        uint32_t pixel_type;
        uint64_t row_bytes, bytes;
    } kRows[] = {
        {32, 1.0, 0, "PRFD", 0x42524138, 148, 148 * 19}, {128, 1.0, 4, "PRFD", 0x52423649, 222, 222 * 19},
        {32, 0.5, 3, "GRHD", 0x42524138, 72, 72 * 9},    {128, 0.5, 4, "PRHD", 0x52423649, 108, 108 * 9},
        {32, 0.25, 1, "GRQD", 0x42524138, 36, 36 * 4},   {128, 0.125, 1, "GRED", 0x52423649, 24, 24 * 2},
        {32, 0.0625, 4, "GRSD", 0x42524138, 8, 8},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(&row - kRows);
        Told().jobs.clear();
        const Read read(video.Get(), 7, Request(row.bits, row.scale, row.quality), 100000);
        EXPECT_EQ(read.result, S_OK);
        ASSERT_EQ(Told().jobs.size(), 1u);
        const auto& [frame, job, settings] = Told().jobs[0];
        EXPECT_EQ(frame, 7u);
        EXPECT_EQ(job.version, 1u);
        EXPECT_EQ(job.size, 64u);
        EXPECT_EQ(std::memcmp(&job.decodeMode, row.mode, 4), 0);
        EXPECT_EQ(static_cast<uint32_t>(job.pixelType), row.pixel_type);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(job.output) % 16, 0u);
        EXPECT_EQ(job.rowBytes, row.row_bytes);
        EXPECT_EQ(job.outputBytes, row.bytes);
        EXPECT_EQ(job.reserved1 + job.reserved2, 0u);
    }
}

TEST_F(ReadVideoStream, QualityThatNoSizeFitsReadsHalfABufferAtFullQuality) {
    // The mode stays at full size while the buffer is for half of it: the decoder is told its room and refuses.
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    const Read read(video.Get(), 0, Request(32, 0.5, 0), 1000);
    EXPECT_EQ(read.result, E_FAIL);
    ASSERT_EQ(Told().jobs.size(), 1u);
    EXPECT_EQ(Told().jobs[0].job.decodeMode, clipfio::DecodeMode::FullPremium);
    EXPECT_EQ(Told().jobs[0].job.outputBytes, 5u * 3 * 4);
    EXPECT_TRUE(read.MemoryUntouched());
    Decoder().misuses = 0;
}

TEST_F(ReadVideoStream, FailedReadsWriteNothing) {
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    const auto expect_nothing = [&](const Read& read, HRESULT result) {
        EXPECT_EQ(read.result, result);
        EXPECT_EQ(read.bytes, 0xDDDDDDDDu);
        EXPECT_TRUE(read.MemoryUntouched());
    };
    for (const uint32_t bits : {32u, 128u}) {
        const uint32_t bytes = 10 * 6 * bits / 8;
        expect_nothing(Read(video.Get(), 0, Request(bits), bytes - 1), E_INVALIDARG);
        EXPECT_EQ(Read(video.Get(), 0, Request(bits), bytes).result, S_OK);
        Told().decode_status = 17;
        expect_nothing(Read(video.Get(), 0, Request(bits), bytes), E_FAIL);
        Told().decode_status = 0;
    }
    expect_nothing(Read(video.Get(), 0, Request(24), 1000), E_INVALIDARG);

    std::vector<uint8_t> memory(1000, Read::kUntouched);
    const auto request = Request(32);
    const auto token = TokenOf(memory.data(), memory.size());
    _ktframeinfo info;
    uint32_t bytes = 9;
    EXPECT_EQ(video->ReadFrame(0, nullptr, &token, &info, &bytes), E_INVALIDARG);
    EXPECT_EQ(video->ReadFrame(0, &request, &token, nullptr, &bytes), E_INVALIDARG);
    EXPECT_EQ(video->ReadFrame(0, &request, &token, &info, nullptr), E_INVALIDARG);
    EXPECT_EQ(video->ReadFrame(0, &request, nullptr, &info, &bytes), E_INVALIDARG);
    for (const auto& bad : UnusableTokens(token)) {
        EXPECT_EQ(video->ReadFrame(0, &request, &bad, &info, &bytes), E_INVALIDARG);
    }
    EXPECT_EQ(bytes, 9u);
    EXPECT_EQ(memory, std::vector<uint8_t>(1000, Read::kUntouched));

    // A token's offset counts in both directions.
    _ktmemorytoken shifted = token;
    shifted.address += 500;
    shifted.offset = -400;
    shifted.size = 240;
    EXPECT_EQ(video->ReadFrame(0, &request, &shifted, &info, &bytes), S_OK);
    EXPECT_EQ(memory[100], Sample8(0, 5 * 40));
    EXPECT_EQ(memory[99], Read::kUntouched);
    EXPECT_EQ(memory[340], Read::kUntouched);

    EXPECT_EQ(file->Close(), S_OK);
    expect_nothing(Read(video.Get(), 0, Request(32), 1000), E_FAIL);
    EXPECT_EQ(file->Open(0, 0), S_OK);
    EXPECT_EQ(Read(video.Get(), 0, Request(32), 1000).result, S_OK);  // with a new buffer
}

}  // namespace
}  // namespace reader_tests
