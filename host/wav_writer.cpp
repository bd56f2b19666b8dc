#include "host/wav_writer.h"

#include <array>
#include <cstring>

#include "host/failure.h"
#include "platform/endian.h"

namespace clipfio::host {
namespace {

constexpr std::uint16_t kTagExtensible = 0xFFFE;
// The sub-format of an extensible format: the tag, and then what all such ids share.
constexpr std::uint8_t kFloatSubFormat[16] = {3, 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
constexpr std::uint32_t kHeaderBytes = 80;
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

// The bytes of sound. Throws Failure when the form has no room for them.
std::uint32_t DataBytes(const WavFormat& format, std::uint64_t samples) {
    const std::uint64_t block = format.channels * sizeof(float);
    if (samples > kMostDataBytes / block) {
        throw Failure("the sound is longer than a WAV file can hold: write it in parts, with --from and --count");
    }
    return static_cast<std::uint32_t>(samples * block);
}

HeaderBytes HeaderOf(const WavFormat& format, std::uint64_t samples) {
    const std::uint32_t data_bytes = DataBytes(format, samples);
    const auto block = static_cast<std::uint16_t>(format.channels * sizeof(float));
    HeaderBytes header;
    header.Text("RIFF");
    header.U32(data_bytes + kHeaderBytes - 8);
    header.Text("WAVE");
    header.Text("fmt ");
    header.U32(40);
    header.U16(kTagExtensible);
    header.U16(format.channels);
    header.U32(format.rate);
    header.U32(format.rate * block);
    header.U16(block);
    header.U16(32);
    header.U16(22);
    header.U16(32);
    header.U32(format.channel_mask);
    header.Raw(kFloatSubFormat);
    header.Text("fact");
    header.U32(4);
    header.U32(static_cast<std::uint32_t>(samples));
    header.Text("data");
    header.U32(data_bytes);
    return header;
}

}  // namespace

WavWriter::WavWriter(const std::string& path, const WavFormat& format, std::uint64_t samples) : file_(path) {
    const HeaderBytes header = HeaderOf(format, samples);
    file_.Write(header.Get().data(), header.Get().size());
}

void WavWriter::Write(std::span<const float> samples) { file_.Write(samples.data(), samples.size_bytes()); }

void WavWriter::Finish() { file_.Commit(); }

}  // namespace clipfio::host
