// 3x3 matrices over red, green, blue or over tristimulus values.
#pragma once

#include <array>
#include <cstddef>

namespace clipfio::decoder {

using Vector3 = std::array<double, 3>;

struct Matrix3 {
    std::array<Vector3, 3> rows{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

    friend bool operator==(const Matrix3&, const Matrix3&) = default;
};

constexpr Vector3 operator*(const Matrix3& m, const Vector3& v) noexcept {
    Vector3 out{};
    for (size_t r = 0; r < 3; ++r) out[r] = m.rows[r][0] * v[0] + m.rows[r][1] * v[1] + m.rows[r][2] * v[2];
    return out;
}

constexpr Matrix3 operator*(const Matrix3& a, const Matrix3& b) noexcept {
    Matrix3 out;
    for (size_t r = 0; r < 3; ++r) {
        for (size_t c = 0; c < 3; ++c) {
            out.rows[r][c] = a.rows[r][0] * b.rows[0][c] + a.rows[r][1] * b.rows[1][c] + a.rows[r][2] * b.rows[2][c];
        }
    }
    return out;
}

constexpr Matrix3 Diagonal(const Vector3& v) noexcept { return {{{{v[0], 0, 0}, {0, v[1], 0}, {0, 0, v[2]}}}}; }

// Of a matrix that has one.
constexpr Matrix3 Inverse(const Matrix3& m) noexcept {
    const auto minor = [&m](size_t r, size_t c) {
        const size_t r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
        return m.rows[r1][c1] * m.rows[r2][c2] - m.rows[r1][c2] * m.rows[r2][c1];
    };
    const double determinant = m.rows[0][0] * minor(0, 0) + m.rows[0][1] * minor(0, 1) + m.rows[0][2] * minor(0, 2);
    Matrix3 out;
    for (size_t r = 0; r < 3; ++r) {
        for (size_t c = 0; c < 3; ++c) out.rows[r][c] = minor(c, r) / determinant;
    }
    return out;
}

}  // namespace clipfio::decoder
