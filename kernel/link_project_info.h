// What one application hands another about a project and about itself.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"

// A plain record; start from a zeroed one and fill it through the addresses that the `...Ptr` operations and
// GetRendererGuid give. It owns nothing: texts and blocks belong to whoever filled it, and a copy shares them. Whether
// a size counts characters or bytes, and what the version says, is between the programs that exchange the record. One
// thread at a time.
class KT_EXPORT CKtLinkProjectInfo {
  public:
    CKtLinkProjectInfo() = default;
    CKtLinkProjectInfo(const CKtLinkProjectInfo&) = default;
    CKtLinkProjectInfo& operator=(const CKtLinkProjectInfo& other) noexcept;

    uint32_t GetVersion() const noexcept;
    GUID* GetRendererGuid() noexcept;

    const WCHAR* GetProjectPath() const noexcept;
    const WCHAR** GetProjectPathPtr() noexcept;
    uint32_t GetProjectPathSize() const noexcept;
    uint32_t* GetProjectPathSizePtr() noexcept;

    const WCHAR* GetCommandLineW() const noexcept;
    const WCHAR** GetCommandLinePtr() noexcept;
    uint32_t GetCommandLineSize() const noexcept;
    uint32_t* GetCommandLineSizePtr() noexcept;

    const WCHAR* GetTemplateName() const noexcept;
    const WCHAR** GetTemplateNamePtr() noexcept;
    uint32_t GetTemplateNameSize() const noexcept;
    uint32_t* GetTemplateNameSizePtr() noexcept;

    const uint8_t* GetTemplateData() const noexcept;
    const uint8_t** GetTemplateDataPtr() noexcept;
    uint32_t GetTemplateDataSize() const noexcept;
    uint32_t* GetTemplateDataSizePtr() noexcept;

    const uint8_t* GetAppTemplateData() const noexcept;
    const uint8_t** GetAppTemplateDataPtr() noexcept;
    uint32_t GetAppTemplateDataSize() const noexcept;
    uint32_t* GetAppTemplateDataSizePtr() noexcept;

    const WCHAR* GetCreatorAppInfo() const noexcept;
    const WCHAR** GetCreatorAppInfoPtr() noexcept;
    uint32_t GetCreatorAppInfoSize() const noexcept;
    uint32_t* GetCreatorAppInfoSizePtr() noexcept;

    const WCHAR* GetCreatorAppWindowClassName() const noexcept;
    const WCHAR** GetCreatorAppWindowClassNamePtr() noexcept;
    uint32_t GetCreatorAppWindowClassNameSize() const noexcept;
    uint32_t* GetCreatorAppWindowClassNameSizePtr() noexcept;

    const uint8_t* GetProjectData() const noexcept;
    const uint8_t** GetProjectDataPtr() noexcept;
    uint32_t GetProjectDataSize() const noexcept;
    uint32_t* GetProjectDataSizePtr() noexcept;

  private:
    friend struct CKtLinkProjectInfoLayout;

    uint64_t leading_;  // only ever copied
    uint32_t version_;
    const WCHAR* project_path_;
    uint32_t project_path_size_;
    const WCHAR* command_line_;
    uint32_t command_line_size_;
    GUID renderer_;
    const WCHAR* template_name_;
    uint32_t template_name_size_;
    const uint8_t* template_data_;
    uint32_t template_data_size_;
    const uint8_t* app_template_data_;
    uint32_t app_template_data_size_;
    const WCHAR* creator_app_info_;
    uint32_t creator_app_info_size_;
    const WCHAR* creator_app_window_class_name_;
    uint32_t creator_app_window_class_name_size_;
    const uint8_t* project_data_;
    uint32_t project_data_size_;
};

struct CKtLinkProjectInfoLayout {
    static_assert(sizeof(CKtLinkProjectInfo) == 160);
    static_assert(offsetof(CKtLinkProjectInfo, leading_) == 0);
    static_assert(offsetof(CKtLinkProjectInfo, version_) == 8);
    static_assert(offsetof(CKtLinkProjectInfo, project_path_) == 16);
    static_assert(offsetof(CKtLinkProjectInfo, project_path_size_) == 24);
    static_assert(offsetof(CKtLinkProjectInfo, command_line_) == 32);
    static_assert(offsetof(CKtLinkProjectInfo, command_line_size_) == 40);
    static_assert(offsetof(CKtLinkProjectInfo, renderer_) == 44);
    static_assert(offsetof(CKtLinkProjectInfo, template_name_) == 64);
    static_assert(offsetof(CKtLinkProjectInfo, template_name_size_) == 72);
    static_assert(offsetof(CKtLinkProjectInfo, template_data_) == 80);
    static_assert(offsetof(CKtLinkProjectInfo, template_data_size_) == 88);
    static_assert(offsetof(CKtLinkProjectInfo, app_template_data_) == 96);
    static_assert(offsetof(CKtLinkProjectInfo, app_template_data_size_) == 104);
    static_assert(offsetof(CKtLinkProjectInfo, creator_app_info_) == 112);
    static_assert(offsetof(CKtLinkProjectInfo, creator_app_info_size_) == 120);
    static_assert(offsetof(CKtLinkProjectInfo, creator_app_window_class_name_) == 128);
    static_assert(offsetof(CKtLinkProjectInfo, creator_app_window_class_name_size_) == 136);
    static_assert(offsetof(CKtLinkProjectInfo, project_data_) == 144);
    static_assert(offsetof(CKtLinkProjectInfo, project_data_size_) == 152);
};
