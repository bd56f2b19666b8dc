// The module as a host sees it: a file that is loaded at run time, and one exported function.
#pragma once

#include <map>
#include <string>

#include "platform/scoped.h"
#include "reader/host_interfaces.h"

namespace clipfio::host {

// The decoder library's file name, on every target.
inline constexpr const char* kDecoderFile = "REDR3D-x64.dll";

// Points the module to the decoder beside this program, unless the user says where it is or there is none. To be called
// before the module is loaded, for the module looks for its decoder then.
void OfferDecoderBesideProgram();

// Where the module looks for the decoder, for messages.
[[nodiscard]] std::string DecoderSearchText();
// The file that it finds first; empty when there is none.
[[nodiscard]] std::string DecoderFile();

// Stays loaded until the process ends, as the module demands.
class Module {
  public:
    // An empty path looks at CLIPFIO_MODULE, then beside the program, then in ../lib. Throws Failure.
    explicit Module(const std::string& path);

    // Outlives all file objects made from it.
    [[nodiscard]] IKtReadFileClass& FileClass() const { return *file_class_.Get(); }
    [[nodiscard]] const std::string& Path() const { return path_; }

    // The class's texts by their ids; those it does not have are left out.
    [[nodiscard]] std::map<uint32_t, std::string> ClassStrings() const;

  private:
    std::string path_;
    platform::ComPtr<IKtReadFileClass> file_class_;
};

// Ids of the class's texts.
inline constexpr uint32_t kClassShortName = 1;
inline constexpr uint32_t kClassName = 2;
inline constexpr uint32_t kClassPattern = 4;

}  // namespace clipfio::host
