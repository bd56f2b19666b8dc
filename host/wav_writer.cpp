#include "host/wav_writer.h"

#include <array>
#include <cstring>

#include "host/failure.h"
#include "platform/endian.h"

namespace clipfio::host {
namespace {

constexpr std::uint16_t kTagFloat = 3;
constexpr std::uint16_t kTagExtensible = 0xFFFE;
// The sub-format of an extensible format: the tag, and then what all such ids share.
constexpr std::uint8_t kFloatSubFormat[16] = {3, 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
constexpr std::uint32_t kHeaderBytes = 80;
constexpr std::uint32_t kRiffSizeAt = 4;
constexpr std::uint32_t kFactAt = 68;
constexpr std::uint32_t kDataSizeAt = 76;
constexpr std::uint64_t kMostDataBytes = 0xFFFFFFFFu - kHeaderBytes;

// Has room for the header and no more.
class HeaderBytes {
  public:
    void Text(const char* four) { Put(four, 4); }
    void U16(std::uint16_t value) { Number(value); }
    void U32(std::uint32_t value) { Number(value); }
    void Raw(std::span<const std::uint8_t> bytes) { Put(bytes.data(), bytes.size()); }
    [[nodiscard]] std::span<const std::uint8_t> Get() const { return {bytes_.data(), at_}; }

  private:
    void Put(const void* bytes, std::size_t count) {
        std::memcpy(bytes_.data() + at_, bytes, count);
        at_ += count;
    }
    template <class T>
    void Number(T value) {
        platform::StoreLittle(bytes_.data() + at_, value);
        at_ += sizeof value;
    }
    std::array<std::uint8_t, kHeaderBytes> bytes_{};
    std::size_t at_ = 0;
};

}  // namespace

WavWriter::WavWriter(const std::string& path, std::uint32_t rate, std::uint16_t channels, std::uint32_t channel_mask)
    : file_(path), channels_(channels) {
    const auto block = static_cast<std::uint16_t>(channels * sizeof(float));
    HeaderBytes header;
    header.Text("RIFF");
    header.U32(0);
    header.Text("WAVE");
    header.Text("fmt ");
    header.U32(40);
    header.U16(kTagExtensible);
    header.U16(channels);
    header.U32(rate);
    header.U32(rate * block);
    header.U16(block);
    header.U16(32);
    header.U16(22);
    header.U16(32);
    header.U32(channel_mask);
    header.Raw(kFloatSubFormat);
    header.Text("fact");
    header.U32(4);
    header.U32(0);
    header.Text("data");
    header.U32(0);
    file_.Write(header.Get().data(), header.Get().size());
}

void WavWriter::Write(std::span<const float> samples) {
    if (samples.size_bytes() > kMostDataBytes - data_bytes_) {
        throw Failure("the sound is longer than a WAV file can hold: write it in parts, with --from and --count");
    }
    file_.Write(samples.data(), samples.size_bytes());
    data_bytes_ += samples.size_bytes();
}

void WavWriter::Finish() {
    const auto patch = [this](std::uint64_t position, std::uint64_t value) {
        const auto small = static_cast<std::uint32_t>(value);
        file_.Overwrite(position, &small, sizeof small);
    };
    patch(kRiffSizeAt, data_bytes_ + kHeaderBytes - 8);
    patch(kFactAt, data_bytes_ / sizeof(float) / channels_);
    patch(kDataSizeAt, data_bytes_);
    file_.Commit();
}

}  // namespace clipfio::host
