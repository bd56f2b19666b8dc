// A language handle beside the kernel's own.
#pragma once

#include <gtest/gtest.h>

#include <utility>

#include "kernel/lang.h"
#include "platform/modules.h"
#include "platform/scoped.h"
#include "platform/text.h"

class WithLanguage : public testing::Test {
  protected:
    void SetUp() override { Open(nullptr, 0); }
    void TearDown() override {
        KtLang_Close(handle_);
        KtLang_Close(std::exchange(clipfio::KernelLanguage(), nullptr));
    }

    void Open(HMODULE base, LCID lcid) {
        TearDown();
        handle_ = nullptr;
        ASSERT_EQ(KtLang_Open(&clipfio::KernelLanguage(), nullptr, 0, 0), S_OK);
        ASSERT_EQ(KtLang_Open(&handle_, base, lcid, 0), S_OK);
    }

    HKTLANG handle_ = nullptr;
};

// Over the base module of these tests, which lies beside its satellite.
class WithBaseModule : public WithLanguage {
  protected:
    void SetUp() override {
        base_.Reset(LoadLibraryW(platform::Wide(CLIPFIO_LANG_MODULE).c_str()));
        ASSERT_TRUE(base_) << CLIPFIO_LANG_MODULE;
        Open(base_.Get(), 0);
    }
    platform::ScopedLibrary base_;
};
