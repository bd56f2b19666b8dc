// Bytes as the resources of a module, where the platform's layer can take them for such.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/base.h"

class ResourceImageOfRun {
  public:
    ResourceImageOfRun(const uint8_t* data, size_t size);
    ~ResourceImageOfRun();
    ResourceImageOfRun(const ResourceImageOfRun&) = delete;
    ResourceImageOfRun& operator=(const ResourceImageOfRun&) = delete;

    // The module whose resources they are; null, which is the program, where there can be no such module.
    [[nodiscard]] HMODULE Module() const;

  private:
    std::unique_ptr<uint8_t[]> bytes_;
};
