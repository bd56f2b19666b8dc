// Decode-properties files: any text is read to its end, in both ways alike, and what was read survives being written.
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/fuzzers.h"
#include "settings/decode_properties_file.h"
#include "settings/media_property_editor.h"
#include "support/memory_stream.h"

namespace clipfio {
namespace {

using support::MemoryStream;

std::string Written(const MediaPropertyEditor& editor, const DecodeSettingsRecord& record) {
    MemoryStream stream;
    FuzzRequire(editor.SaveSettings(&stream, record) == S_OK, "any record can be written");
    return stream.content;
}

DecodeSettingsRecord Read(const MediaPropertyEditor& editor, const std::string& text) {
    DecodeSettingsRecord record;
    MemoryStream stream(text);
    FuzzRequire(editor.ApplyFile(record, &stream) == S_OK, "any text can be read");
    return record;
}

DecodeSettingsRecord ReadInBlocks(const MediaPropertyEditor& editor, const std::string& text) {
    DecodeSettingsRecord record;
    MemoryStream stream(text);
    EntrySource source(&stream, EntrySource::Reading::InBlocks);
    const ItemClones clones(editor.Items());
    FuzzRequire(ReadEntries(clones, source) == S_OK, "any text can be read in blocks");
    clones.ForEach([&](const MediaPropertyItem& item) { item.StoreToSettings(record); });
    return record;
}

}  // namespace
}  // namespace clipfio

int FuzzSettingsFile(const uint8_t* data, size_t size) {
    using namespace clipfio;
    static const MediaPropertyEditor editor{MediaPropertyEditor::WithoutDecoder{}};
    const std::string text(reinterpret_cast<const char*>(data), size);
    const DecodeSettingsRecord record = Read(editor, text);
    const DecodeSettingsRecord in_blocks = ReadInBlocks(editor, text);
    FuzzRequire(std::memcmp(&record, &in_blocks, sizeof record) == 0, "both ways of reading agree");

    const std::string written = Written(editor, record);
    // Some runtimes read no other numbers than finite ones.
    static const bool reads_all = std::atof("inf") != 0;
    if (!reads_all && (written.find("inf") != std::string::npos || written.find("nan") != std::string::npos)) return 0;
    FuzzRequire(Written(editor, Read(editor, written)) == written, "what was written reads back as it was");
    return 0;
}
