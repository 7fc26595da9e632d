// Exact arithmetic on binary fractions, to judge rounded results.
#ifndef KAR_TEST_EXACT_H
#define KAR_TEST_EXACT_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A number m * 2^e, m an integer of any length. Every finite double is one, and sums and products of such are exact.
class Exact {
public:
    Exact() = default;
    Exact(double value) : negative(value < 0)
    {
        int power;
        const double fraction = std::frexp(std::fabs(value), &power);
        const auto integer = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
        digits = {static_cast<std::uint32_t>(integer), static_cast<std::uint32_t>(integer >> 32)};
        exponent = power - 53;
        trim();
    }

    Exact operator-() const
    {
        Exact result = *this;
        result.negative = !negative;
        return result;
    }
    Exact operator*(const Exact &o) const
    {
        Exact result;
        result.negative = negative != o.negative;
        result.exponent = exponent + o.exponent;
        result.digits.assign(digits.size() + o.digits.size(), 0);
        for (std::size_t i = 0; i < digits.size(); ++i) {
            std::uint64_t carry = 0;
            for (std::size_t j = 0; j < o.digits.size() || carry != 0; ++j) {
                const std::uint64_t factor = j < o.digits.size() ? o.digits[j] : 0;
                carry += result.digits[i + j] + std::uint64_t{digits[i]} * factor;
                result.digits[i + j] = static_cast<std::uint32_t>(carry);
                carry >>= 32;
            }
        }
        result.trim();
        return result;
    }
    Exact operator+(const Exact &o) const
    {
        Exact a = *this, b = o;
        const int common = a.exponent < b.exponent ? a.exponent : b.exponent;
        a.shiftTo(common);
        b.shiftTo(common);
        Exact result;
        result.exponent = common;
        if (a.negative == b.negative) {
            result.negative = a.negative;
            result.digits = sum(a.digits, b.digits);
        } else if (isLess(a.digits, b.digits)) {
            result.negative = b.negative;
            result.digits = difference(b.digits, a.digits);
        } else {
            result.negative = a.negative;
            result.digits = difference(a.digits, b.digits);
        }
        result.trim();
        return result;
    }
    Exact operator-(const Exact &o) const { return *this + -o; }

    bool isZero() const { return digits.empty(); }
    Exact abs() const { return negative ? -*this : *this; }
    bool operator<=(const Exact &o) const
    {
        const Exact d = *this - o;
        return d.isZero() || d.negative;
    }

private:
    using Digits = std::vector<std::uint32_t>; // base 2^32, lowest first, without leading zeros

    bool negative = false;
    int exponent = 0;
    Digits digits;

    void trim()
    {
        while (!digits.empty() && digits.back() == 0)
            digits.pop_back();
    }
    void shiftTo(int lower)
    {
        int bits = digits.empty() ? 0 : exponent - lower;
        exponent = lower;
        digits.insert(digits.begin(), static_cast<std::size_t>(bits / 32), 0);
        bits %= 32;
        std::uint64_t carry = 0;
        for (std::uint32_t &digit : digits) {
            carry |= std::uint64_t{digit} << bits;
            digit = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        digits.push_back(static_cast<std::uint32_t>(carry));
        trim();
    }
    static bool isLess(const Digits &a, const Digits &b)
    {
        if (a.size() != b.size())
            return a.size() < b.size();
        for (std::size_t i = a.size(); i-- > 0;)
            if (a[i] != b[i])
                return a[i] < b[i];
        return false;
    }
    static Digits sum(const Digits &a, const Digits &b)
    {
        Digits result;
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < a.size() || i < b.size() || carry != 0; ++i) {
            carry += std::uint64_t{i < a.size() ? a[i] : 0} + (i < b.size() ? b[i] : 0);
            result.push_back(static_cast<std::uint32_t>(carry));
            carry >>= 32;
        }
        return result;
    }
    static Digits difference(const Digits &larger, const Digits &smaller)
    {
        Digits result;
        std::int64_t borrow = 0;
        for (std::size_t i = 0; i < larger.size(); ++i) {
            borrow += std::int64_t{larger[i]} - (i < smaller.size() ? std::int64_t{smaller[i]} : 0);
            result.push_back(static_cast<std::uint32_t>(borrow));
            borrow >>= 32;
        }
        return result;
    }
};

#endif
