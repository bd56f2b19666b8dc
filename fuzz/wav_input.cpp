// WAV files as the writer of clips takes them.
#include "substitutes/decoder/wav_input.h"

#include <vector>

#include "fuzz/fuzzers.h"
#include "fuzz/input_file.h"

int FuzzWavInput(const uint8_t* data, size_t size) {
    const InputFileOfRun file(data, size);
    clipfio::decoder::WavInput input;
    if (!input.Open(file.Path())) {
        FuzzRequire(!input.Error().empty(), "a refusal has a reason");
        return 0;
    }
    FuzzRequire(input.SampleRate() != 0 && input.Channels() >= 1 && input.Channels() <= 64,
                "an open file has a format");
    const uint64_t frame_bytes = uint64_t{input.Channels()} * input.SampleSize() / 8;
    FuzzRequire(input.SampleCount() <= size / frame_bytes, "there are no more samples than the file has room for");

    constexpr size_t kPart = 7;
    std::vector<int32_t> sound(kPart * input.Channels());
    uint64_t all = 0;
    while (const size_t got = input.Read(sound.data(), kPart)) all += got;
    FuzzRequire(all == input.SampleCount(), "every sample that is promised can be read");
    return 0;
}
