// The copy engine's test of itself, for a product that wants to know on the user's machine.
#pragma once

#include <span>

#include "audio/copy_engine.h"
#include "platform/base.h"

// Converts every code of the integer types up to 24 bits to float and back, half a step higher, and expects ties to
// even. Takes a second or so.
//
// Returns 0, the first failure noted (E_UNEXPECTED for a node that failed), or E_OUTOFMEMORY. With a window a failure
// of a node is shown instead, and the result is 0; where nothing is there to show it, it is returned all the same.
KT_API HRESULT KtAudioCopy_UnitTest(HWND window) noexcept;

namespace clipfio::audio {

// For the error details, with the node's number; and for the message box, with the style 48 (an exclamation mark).
inline constexpr const WCHAR* kNodeFailedFormat = W("KtAudioCopy_UnitTest node[%d] failed.");
inline constexpr const WCHAR* kSelfTestFailedText = W("INTERNAL: AudioCopy unit test failed!");
inline constexpr uint32_t kSelfTestFailedStyle = 48;

// What the self test needs of the rooms above: error details, a message box, a wait cursor.
class SelfTestReporter {
  public:
    virtual void Begin() noexcept = 0;                                 // empties the error details
    virtual void ShowWaitCursor() noexcept = 0;                        // before each node
    virtual void RestoreCursor() noexcept = 0;                         // once, after the last node
    virtual void AddFailure(int32_t node, HRESULT code) noexcept = 0;  // a node failed
    virtual HRESULT FirstFailure() noexcept = 0;                       // of the error details; 0 when there is none
    virtual void ShowFailure(HWND window) noexcept = 0;                // the message box

  protected:
    ~SelfTestReporter() = default;
};

// Null for none. The reporter stays the caller's, and must live until it is replaced. To be set before other threads
// test.
void SetSelfTestReporter(SelfTestReporter* reporter) noexcept;

struct SelfTestNode {
    KTSAMPLETYPE integerType;
    KTSAMPLETYPE floatType;
    uint32_t processorClass;  // at least, as KtGetCPUSupport tells it
    KTAUDIOCOPYFUNC toFloat;
    KTAUDIOCOPYFUNC fromFloat;
};

// The test over nodes of one's own.
HRESULT RunSelfTest(std::span<const SelfTestNode> nodes, HWND window) noexcept;

}  // namespace clipfio::audio
