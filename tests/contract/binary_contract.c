/* A host that was built with no header of this tree, in another language: it walks from DllGetClassObject over every
   interface by slot numbers, reads the records by byte offsets, and prints what it finds. The same on every target.

   usage: binary_contract CLIP */
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

typedef struct { uint8_t bytes[16]; } Id;
typedef int32_t (*Op)();

extern int32_t DllGetClassObject(const Id* class_id, const Id* id, void** out);
extern int32_t DllCanUnloadNow(void);
extern void DllInitClasses(void);
extern int32_t CreateMappedToken(uint8_t* token, uint32_t size, int32_t zero_fill);
extern int32_t FreeMappedToken(uint8_t* token);
extern uint32_t KtAudio_BytesFromSampleType(uint32_t type);

/* As they lie in memory. */
static const Id kFileClass = {{0x8B, 0xB3, 0x14, 0xE5, 0x61, 0x31, 0x48, 0x4F, 0xBA, 0x6A, 0, 0xAA, 0, 0x6B, 0xA2, 0xBA}};
static const Id kInfoClass = {{0x72, 0x89, 0xE4, 0xF6, 0x5B, 0x51, 0x5E, 0x4A, 0xB3, 0x16, 0xA4, 0x6A, 0x03, 0xC9, 0xC3, 0xC0}};
static const Id kUnknown = {{0, 0, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
static const Id kFactory = {{1, 0, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
static const Id kReadFileClass = {{0xF1, 0x47, 0xF6, 0xEE, 0xAB, 0x02, 0xCD, 0x4F, 0xB0, 0x6E, 0xA5, 0x01, 0xAE, 0xFF, 0x2D, 0x34}};
static const Id kReadFile = {{0xE3, 0x8F, 0x45, 0x08, 0xB8, 0x09, 0x25, 0x4C, 0x8B, 0x42, 0xFA, 0x7A, 0x46, 0x0D, 0xFC, 0x47}};
static const Id kProperties = {{0x8B, 0xA9, 0x65, 0xF6, 0xE4, 0xAD, 0xCD, 0x42, 0xAB, 0xB9, 0xC6, 0x97, 0x42, 0xC7, 0xE6, 0x73}};
static const Id kReadStream = {{0x41, 0x1C, 0xFD, 0x60, 0x25, 0x78, 0xD3, 0x11, 0xA4, 0x83, 0x00, 0x10, 0x5A, 0x24, 0xAA, 0x37}};
static const Id kReadVideo = {{0x3C, 0x6F, 0xE8, 0xD8, 0x2F, 0x4C, 0x3C, 0x40, 0xAC, 0x5B, 0x43, 0xF0, 0x2A, 0xF1, 0xB4, 0x27}};
static const Id kReadAudio = {{0xA8, 0x2E, 0x36, 0x6E, 0x73, 0xF4, 0x67, 0x41, 0xB8, 0x5F, 0x07, 0x4E, 0xAB, 0x32, 0x90, 0xCE}};
static const Id kReadMeta = {{0xE1, 0x20, 0x14, 0x00, 0x8C, 0x93, 0xD3, 0x11, 0xA4, 0x83, 0x00, 0x10, 0x5A, 0x24, 0xAA, 0x37}};
static const Id kPluginInfo = {{0xA7, 0x18, 0x4E, 0x40, 0x88, 0xC2, 0x99, 0x44, 0x8E, 0x42, 0x33, 0xFE, 0xCF, 0xA1, 0x64, 0x2C}};

#define SLOT(object, number) ((*(Op* const*)(object))[number])

static void result(const char* what, int32_t value) { printf("%-28s %08X\n", what, (unsigned)value); }
/* Said only where it is not so: what the call gives is printed behind it. */
static void good(const char* what, int32_t value) { if (value != 0) result(what, value); }
static void number(const char* what, uint64_t value) { printf("%-28s %llu\n", what, (unsigned long long)value); }

static uint16_t u16(const uint8_t* at) { uint16_t v; memcpy(&v, at, sizeof v); return v; }
static uint32_t u32(const uint8_t* at) { uint32_t v; memcpy(&v, at, sizeof v); return v; }
static uint64_t u64(const uint8_t* at) { uint64_t v; memcpy(&v, at, sizeof v); return v; }
static double f64(const uint8_t* at) { double v; memcpy(&v, at, sizeof v); return v; }
static void put(uint8_t* at, const void* value, size_t bytes) { memcpy(at, value, bytes); }

static void text(const char* what, const uint16_t* units) {
    printf("%-28s ", what);
    for (; *units; ++units) putchar(*units < 127 ? *units : '?');
    putchar('\n');
}

static void identity(const char* what, const uint8_t* bytes) {
    printf("%-28s ", what);
    for (int i = 0; i < 16; ++i) printf("%02X", bytes[i]);
    putchar('\n');
}

/* What AddRef and Release give in turn. */
static void counts(const char* what, void* object) {
    const uint32_t up = ((uint32_t(*)(void*))SLOT(object, 1))(object);
    const uint32_t down = ((uint32_t(*)(void*))SLOT(object, 2))(object);
    printf("%-28s %u %u\n", what, (unsigned)up, (unsigned)down);
}

static int32_t query(void* object, const Id* id, void** out) {
    return ((int32_t(*)(void*, const Id*, void**))SLOT(object, 0))(object, id, out);
}
static uint32_t release(void* object) { return ((uint32_t(*)(void*))SLOT(object, 2))(object); }
static int32_t plain(void* object, int slot) { return ((int32_t(*)(void*))SLOT(object, slot))(object); }
static int32_t with(void* object, int slot, void* out) { return ((int32_t(*)(void*, void*))SLOT(object, slot))(object, out); }

static void answers(const char* what, void* object, const Id* id) {
    void* out = NULL;
    const int32_t hr = query(object, id, &out);
    printf("%-28s %08X %s\n", what, (unsigned)hr, out == object ? "itself" : out ? "another table" : "null");
    if (hr == 0 && out) release(out);
}

static void make_token(uint8_t token[40], void* memory, uint32_t bytes) {
    const uint64_t address = (uint64_t)(uintptr_t)memory;
    const uint32_t process = (uint32_t)getpid();
    memset(token, 0, 40);
    put(token + 8, &address, 8);
    put(token + 16, &bytes, 4);
    put(token + 36, &process, 4);
}

static void make_request(uint8_t request[40], uint32_t bits, double scale, double gamma) {
    const uint32_t quality = 4;
    memset(request, 0, 40);
    put(request + 8, &bits, 4);
    put(request + 12, &quality, 4);
    put(request + 16, &scale, 8);
    put(request + 32, &gamma, 8);
}

/* The decoder's arithmetic may differ in the last place: a mean in sixteenths of the range is the same all the same. */
static void picture(const char* what, const uint8_t* pixels, uint32_t count, int floats) {
    double sum[4] = {0, 0, 0, 0};
    for (uint32_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c) {
            float value;
            memcpy(&value, pixels + 16u * i + 4u * (unsigned)c, floats ? sizeof value : 0);
            sum[c] += floats ? value : pixels[4u * i + (unsigned)c] / 255.0;
        }
    printf("%-28s", what);
    for (int c = 0; c < 4; ++c) printf(" %d", (int)(sum[c] / count * 16.0 + 0.5));
    putchar('\n');
}

static void plugin_info(void) {
    void *factory = NULL, *info = NULL;
    good("info: factory", DllGetClassObject(&kInfoClass, &kUnknown, &factory));
    good("info: object", ((int32_t(*)(void*, void*, const Id*, void**))SLOT(factory, 3))(factory, NULL, &kPluginInfo, &info));
    counts("info: counts", info);
    answers("info: IUnknown", info, &kUnknown);
    result("info: prepare", plain(info, 3));
    uint32_t count = 0;
    good("info: count", with(info, 4, &count));
    number("info: formats", count);
    uint8_t id[16];
    uint16_t name[20] = {0};
    int32_t n[7] = {0};
    typedef int32_t (*Info)(void*, uint32_t, void*, uint16_t*, int32_t, int32_t*, int32_t*, int32_t*, int32_t*, int32_t*,
                            int32_t*, uint64_t, int32_t*);
    good("info: format", ((Info)SLOT(info, 5))(info, 0, id, name, 20, n, n + 1, n + 2, n + 3, n + 4, n + 5, 0, n + 6));
    identity("info: format id", id);
    text("info: format name", name);
    for (int i = 0; i < 7; ++i) printf("%-28s %d\n", "info: number", (int)n[i]);
    number("info: left", release(info));
    number("info: factory left", release(factory));
}

static void* file_class(void) {
    void *factory = NULL, *object = NULL;
    good("class: factory", DllGetClassObject(&kFileClass, &kFactory, &factory));
    result("class: by IUnknown", ((int32_t(*)(void*, void*, const Id*, void**))SLOT(factory, 3))(factory, NULL, &kUnknown, &object));
    good("class: object", ((int32_t(*)(void*, void*, const Id*, void**))SLOT(factory, 3))(factory, NULL, &kReadFileClass, &object));
    number("class: factory left", release(factory));
    counts("class: counts", object);
    answers("class: itself", object, &kReadFileClass);
    answers("class: IKtReadFile", object, &kReadFile);
    uint8_t id[16];
    good("class: format id", with(object, 7, id));
    identity("class: format id", id);
    uint32_t value = 0;
    good("class: flags", with(object, 8, &value));
    number("class: flags", value);
    const uint32_t index = 6;
    result("class: set index", ((int32_t(*)(void*, uint32_t))SLOT(object, 3))(object, index));
    good("class: index", with(object, 4, &value));
    number("class: index", value);
    const int refused[] = {10, 14, 18};
    for (int i = 0; i < 3; ++i) result("class: not served", plain(object, refused[i]));
    return object;
}

static void stream_infos(void* file) {
    uint8_t infos[2 * 184];
    memset(infos, 0, sizeof infos);
    good("file: stream infos", ((int32_t(*)(void*, void*, int32_t, int32_t))SLOT(file, 17))(file, infos, 0, 2));
    for (int i = 0; i < 2; ++i) {
        const uint8_t* info = infos + 184 * i;
        number("stream: size", u32(info));
        number("stream: kind", u32(info + 4));
        number("stream: length", u64(info + 8));
    }
    printf("%-28s %.3f %.3f %.3f\n", "video: rate aspect gamma", f64(infos + 40), f64(infos + 48), f64(infos + 56));
    number("video: bitmap size", u32(infos + 88));
    number("video: width", u32(infos + 92));
    number("video: height", u32(infos + 96));
    number("video: bits", u16(infos + 102));
    const uint8_t* sound = infos + 184;
    number("audio: record", u32(sound + 88));
    number("audio: sample type", u32(sound + 92));
    number("audio: channels mask", u16(sound + 112));
}

static void video(void* file) {
    void* stream = NULL;
    good("video: stream", ((int32_t(*)(void*, void**, uint64_t, int32_t))SLOT(file, 20))(file, &stream, 0, 0));
    counts("video: counts", stream);
    answers("video: itself", stream, &kReadVideo);
    answers("video: IKtReadStream", stream, &kReadStream);
    answers("video: IKtReadAudioStream", stream, &kReadAudio);
    uint64_t value = 0;
    good("video: duration", with(stream, 7, &value));
    number("video: duration", value);
    good("video: length", with(stream, 11, &value));
    number("video: length", value);
    result("video: not served", plain(stream, 18));

    static uint8_t pixels[96 * 64 * 16];
    const struct { uint32_t bits; double scale, gamma; } requests[] = {{32, 1.0, 0.0}, {32, 0.5, 0.0}, {128, 0.25, 1.0}};
    for (int i = 0; i < 3; ++i) {
        uint8_t request[40], token[40], info[216];
        uint32_t bytes = 0, written = 0;
        make_request(request, requests[i].bits, requests[i].scale, requests[i].gamma);
        good("frame: size", ((int32_t(*)(void*, uint64_t, void*, uint32_t*))SLOT(stream, 15))(stream, 5, request, &bytes));
        number("frame: size", bytes);
        memset(pixels, 0xEE, sizeof pixels);
        memset(info, 0, sizeof info);
        make_token(token, pixels, bytes);
        good("frame: read", ((int32_t(*)(void*, uint64_t, void*, void*, void*, uint32_t*))SLOT(stream, 17))(
                                  stream, 5, request, token, info, &written));
        number("frame: written", written);
        number("frame: number", u64(info));
        printf("%-28s %.4f\n", "frame: scale", f64(info + 16));
        number("frame: bytes", u32(info + 24));
        printf("%-28s %.3f %.3f %.3f\n", "frame: rate aspect gamma", f64(info + 48), f64(info + 56), f64(info + 64));
        number("frame: width", u32(info + 100));
        number("frame: height", u32(info + 104));
        number("frame: bits", u16(info + 110));
        result("frame: compression", (int32_t)u32(info + 112));
        picture("frame: means", pixels, written / (requests[i].bits / 8), requests[i].bits == 128);
    }
    number("video: left", release(stream));
}

static void audio(void* file) {
    void* stream = NULL;
    good("audio: stream", ((int32_t(*)(void*, void**, uint64_t, int32_t))SLOT(file, 20))(file, &stream, 0, 1));
    answers("audio: itself", stream, &kReadAudio);
    answers("audio: IKtReadStream", stream, &kReadStream);
    uint64_t length = 0;
    uint32_t align = 0;
    good("audio: length", with(stream, 11, &length));
    number("audio: length", length);
    good("audio: align", with(stream, 12, &align));
    number("audio: align", align);

    /* By a mapping of this process's own, as a host that runs the module elsewhere has it. */
    uint8_t token[40];
    const uint32_t frames = 300;
    good("token: made", CreateMappedToken(token, frames * align, 1));
    number("token: size", u32(token + 16));
    number("token: mapped size", u32(token + 20));
    number("token: type", u32(token + 32));
    printf("%-28s %s\n", "token: owner", u32(token + 36) == (uint32_t)getpid() ? "this process" : "another one");
    int32_t read = -1;
    good("audio: read", ((int32_t(*)(void*, int64_t, void*, int32_t, int32_t*))SLOT(stream, 16))(stream, 100, token,
                                                                                                  (int32_t)frames, &read));
    number("audio: samples read", (uint64_t)read);
    const uint8_t* samples = (const uint8_t*)(uintptr_t)u64(token + 8);
    for (uint32_t i = 0; i < 4; ++i) printf("%-28s %08X\n", "audio: sample", (unsigned)u32(samples + 4 * 50 * i));
    good("token: freed", FreeMappedToken(token));
    number("token: type", u32(token + 32));
    number("audio: left", release(stream));
}

static void metadata(void* file) {
    void* meta = NULL;
    good("meta: object", with(file, 22, &meta));
    answers("meta: itself", meta, &kReadMeta);
    uint16_t value[40] = {0};
    good("meta: timecode", ((int32_t(*)(void*, uint32_t, uint16_t*, int32_t))SLOT(meta, 6))(meta, 0x444F4354u, value, 40));
    text("meta: timecode", value);
    result("meta: not served", plain(meta, 3));
    number("meta: left", release(meta));
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    uint16_t path[260] = {0};
    for (int i = 0; argv[1][i] && i < 259; ++i) path[i] = (uint8_t)argv[1][i];

    DllInitClasses();
    result("DllCanUnloadNow", DllCanUnloadNow());
    number("bytes of sample type 32", KtAudio_BytesFromSampleType(32));
    void* nothing = NULL;
    result("no such interface", DllGetClassObject(&kFileClass, &kReadFile, &nothing));
    plugin_info();

    void *object = file_class(), *file = NULL;
    result("file: sniff", with(object, 13, path));
    good("file: made", with(object, 19, &file));
    result("file: named", with(file, 12, path));
    result("file: open", ((int32_t(*)(void*, uint32_t, uint32_t))SLOT(file, 11))(file, 0x80000000u, 1));
    counts("file: counts", file);
    answers("file: itself", file, &kReadFile);
    answers("file: properties", file, &kProperties);
    uint16_t words[300] = {0};
    good("file: text", ((int32_t(*)(void*, uint16_t*, int32_t, uint32_t))SLOT(file, 4))(file, words, 300, 1));
    text("file: text", words);
    for (int stream = 0; stream < 2; ++stream) {
        good("file: stream text", ((int32_t(*)(void*, uint16_t*, int32_t, int32_t, uint32_t))SLOT(file, 5))(file, words, 300, stream, 2));
        text("file: stream text", words);
    }
    stream_infos(file);
    video(file);
    audio(file);
    metadata(file);
    result("file: close", plain(file, 9));
    result("file: is open", plain(file, 10));
    number("file: left", release(file));
    number("class: left", release(object));
    return 0;
}
