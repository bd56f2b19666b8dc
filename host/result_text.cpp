#include "host/result_text.h"

#include <cstdio>

#include "host/failure.h"
#include "platform/result_file.h"

namespace clipfio::host {
namespace {

constexpr uint32_t kFromSystem = 0x80070000;  // with the system's own error number below

}  // namespace

std::string ResultText(HRESULT result) {
    struct Name {
        HRESULT result;
        const char* text;
    };
    static constexpr Name kNames[] = {{S_FALSE, "S_FALSE"},
                                      {E_NOTIMPL, "E_NOTIMPL"},
                                      {E_NOINTERFACE, "E_NOINTERFACE"},
                                      {E_POINTER, "E_POINTER"},
                                      {E_FAIL, "E_FAIL"},
                                      {E_UNEXPECTED, "E_UNEXPECTED"},
                                      {E_OUTOFMEMORY, "out of memory"},
                                      {E_INVALIDARG, "E_INVALIDARG"}};
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(result));
    for (const Name& name : kNames) {
        if (name.result == result) return std::string(name.text) + " (" + number + ")";
    }
    if ((static_cast<uint32_t>(result) & 0xFFFF0000u) == kFromSystem) {
        return std::string(platform::ErrorText(static_cast<uint32_t>(result) & 0xFFFFu)) + " (" + number + ")";
    }
    return number;
}

void Require(HRESULT result, const char* what) {
    if (FAILED(result)) throw Failure(std::string(what) + ": " + ResultText(result));
}

std::string GuidText(const GUID& id) {
    char text[40];
    const auto* d = id.Data4;
    std::snprintf(text, sizeof text, "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  static_cast<unsigned>(id.Data1), id.Data2, id.Data3, d[0], d[1], d[2], d[3], d[4], d[5], d[6], d[7]);
    return text;
}

}  // namespace clipfio::host
