// What the user wants of a clip's settings, checked against the table before any clip is touched.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace clipfio::host {

// Carried out in this order: reset, then unset, then set.
struct SettingEdits {
    bool reset = false;
    std::vector<std::string> unset;                        // keys
    std::vector<std::pair<std::string, std::string>> set;  // key, and its value as the module takes it

    [[nodiscard]] bool Empty() const { return !reset && unset.empty() && set.empty(); }
};

// `assignments` are "Key=Value"; a choice's name stands for its number, "on" and "off" for 1 and 0. Throws UsageError
// for an unknown key, a value out of its limits, and a key that is both set and unset.
[[nodiscard]] SettingEdits ParseEdits(bool reset, const std::vector<std::string>& unset,
                                      const std::vector<std::string>& assignments);

// All keys with their limits or choices, for people.
[[nodiscard]] std::string DescribeKeys();

}  // namespace clipfio::host
