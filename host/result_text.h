// Results of the module as text for people.
#pragma once

#include <string>

#include "platform/base.h"

namespace clipfio::host {

// "E_FAIL (0x80004005)", or the number alone.
[[nodiscard]] std::string ResultText(HRESULT result);

// Throws Failure with "`what`: result" for a failure.
void Require(HRESULT result, const char* what);

[[nodiscard]] std::string GuidText(const GUID& id);

}  // namespace clipfio::host
