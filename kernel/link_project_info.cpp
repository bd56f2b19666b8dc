#include "kernel/link_project_info.h"

using Info = CKtLinkProjectInfo;

Info& Info::operator=(const Info& other) noexcept = default;

uint32_t Info::GetVersion() const noexcept { return version_; }
GUID* Info::GetRendererGuid() noexcept { return &renderer_; }

const WCHAR* Info::GetProjectPath() const noexcept { return project_path_; }
const WCHAR** Info::GetProjectPathPtr() noexcept { return &project_path_; }
uint32_t Info::GetProjectPathSize() const noexcept { return project_path_size_; }
uint32_t* Info::GetProjectPathSizePtr() noexcept { return &project_path_size_; }

const WCHAR* Info::GetCommandLineW() const noexcept { return command_line_; }
const WCHAR** Info::GetCommandLinePtr() noexcept { return &command_line_; }
uint32_t Info::GetCommandLineSize() const noexcept { return command_line_size_; }
uint32_t* Info::GetCommandLineSizePtr() noexcept { return &command_line_size_; }

const WCHAR* Info::GetTemplateName() const noexcept { return template_name_; }
const WCHAR** Info::GetTemplateNamePtr() noexcept { return &template_name_; }
uint32_t Info::GetTemplateNameSize() const noexcept { return template_name_size_; }
uint32_t* Info::GetTemplateNameSizePtr() noexcept { return &template_name_size_; }

const uint8_t* Info::GetTemplateData() const noexcept { return template_data_; }
const uint8_t** Info::GetTemplateDataPtr() noexcept { return &template_data_; }
uint32_t Info::GetTemplateDataSize() const noexcept { return template_data_size_; }
uint32_t* Info::GetTemplateDataSizePtr() noexcept { return &template_data_size_; }

const uint8_t* Info::GetAppTemplateData() const noexcept { return app_template_data_; }
const uint8_t** Info::GetAppTemplateDataPtr() noexcept { return &app_template_data_; }
uint32_t Info::GetAppTemplateDataSize() const noexcept { return app_template_data_size_; }
uint32_t* Info::GetAppTemplateDataSizePtr() noexcept { return &app_template_data_size_; }

const WCHAR* Info::GetCreatorAppInfo() const noexcept { return creator_app_info_; }
const WCHAR** Info::GetCreatorAppInfoPtr() noexcept { return &creator_app_info_; }
uint32_t Info::GetCreatorAppInfoSize() const noexcept { return creator_app_info_size_; }
uint32_t* Info::GetCreatorAppInfoSizePtr() noexcept { return &creator_app_info_size_; }

const WCHAR* Info::GetCreatorAppWindowClassName() const noexcept { return creator_app_window_class_name_; }
const WCHAR** Info::GetCreatorAppWindowClassNamePtr() noexcept { return &creator_app_window_class_name_; }
uint32_t Info::GetCreatorAppWindowClassNameSize() const noexcept { return creator_app_window_class_name_size_; }
uint32_t* Info::GetCreatorAppWindowClassNameSizePtr() noexcept { return &creator_app_window_class_name_size_; }

const uint8_t* Info::GetProjectData() const noexcept { return project_data_; }
const uint8_t** Info::GetProjectDataPtr() noexcept { return &project_data_; }
uint32_t Info::GetProjectDataSize() const noexcept { return project_data_size_; }
uint32_t* Info::GetProjectDataSizePtr() noexcept { return &project_data_size_; }
