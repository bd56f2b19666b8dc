#include <gtest/gtest.h>

#include <clocale>

#include "support/child_roles.h"

int main(int argc, char** argv) {
    // As a host would start: whatever locale the user has is in force for the C runtime's classification and collation,
    // while numbers stay as the library found them.
    std::setlocale(LC_CTYPE, "");
    if (const auto code = support::RunChildRole(argc, argv)) return *code;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
