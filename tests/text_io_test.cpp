// The number fields of every reader against std::from_chars, bit for bit (the readers
// parse plain decimals on their own), and the count of control bytes against a plain
// loop at every alignment.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "data/text_io.h"

namespace {

template <typename T>
void expectAsFromChars(const std::string& text) {
    T expected{};
    auto result = std::from_chars(text.data(), text.data() + text.size(), expected, std::chars_format::general);
    bool parses = result.ec == std::errc() && std::isfinite(expected);
    T got = T(-7);
    NumberField field;
    if constexpr (std::is_same_v<T, float>) field = readFloatField(text.c_str(), &got);
    else field = readDoubleField(text.c_str(), &got);
    if (!parses) {
        EXPECT_EQ(field, NumberField::bad) << text;
        return;
    }
    EXPECT_EQ(std::memcmp(&got, &expected, sizeof got), 0) << text << ": " << got << " against " << expected;
    EXPECT_EQ(field, result.ptr == text.data() + text.size() ? NumberField::whole : NumberField::partial) << text;
    T parsed = T(-7);
    if constexpr (std::is_same_v<T, float>) EXPECT_TRUE(parseFloat(text.c_str(), &parsed));
    else EXPECT_TRUE(parseDouble(text.c_str(), &parsed));
    EXPECT_EQ(std::memcmp(&parsed, &expected, sizeof parsed), 0) << text;
}

void expectAllAsFromChars(const std::string& text) {
    expectAsFromChars<float>(text);
    expectAsFromChars<double>(text);
}

TEST(TextIo, NumbersReadAsFromCharsReadsThem) {
    // Exact midpoints of two floats with few digits: the float must round to even.
    for (const char* text : {"16777217", "16777219", "-16777217", "8388608.5", "8388609.5", "33554434", "0.5",
                             "5.", ".25", "-.5", "-0", "0.000000", ".", "-", "1.5.3", "1.5e3", "1.5e", "2e-3x",
                             "inf", "nan", "1e39", "123456789012345678901234", "0.1234567890123456789012345",
                             "9007199254740993", "900719925474099.3", "12.5abc", "7,5"})
        expectAllAsFromChars(text);

    std::mt19937_64 random(23);
    char text[64];
    for (int i = 0; i < 200000; ++i) {
        uint64_t digits = random() >> (random() % 64);
        int decimals = int(random() % 24);
        std::string whole = std::to_string(digits);
        if (decimals >= int(whole.size())) whole.insert(0, size_t(decimals) - whole.size() + 1, '0');
        std::snprintf(text, sizeof text, "%s%.*s%s%s", random() % 3 == 0 ? "-" : "",
                      int(whole.size()) - decimals, whole.c_str(), decimals ? "." : "",
                      whole.c_str() + whole.size() - decimals);
        expectAllAsFromChars(text);
    }
    // What the writer writes: six decimals.
    for (int i = 0; i < 100000; ++i) {
        double value = std::ldexp(double(random() % 2000000) - 1000000.0, -int(random() % 30));
        std::snprintf(text, sizeof text, "%.6f", value);
        expectAllAsFromChars(text);
    }
}

int plainControlCount(const std::string& text) {
    int count = 0;
    for (unsigned char c : text) count += c < 0x20 && c != 0 && c != '\t' && c != '\n' && c != '\r';
    return count;
}

TEST(TextIo, ControlBytesCountedAtEveryAlignment) {
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        std::string text(random() % 40, 'a');
        for (char& c : text) c = char(random() % 4 == 0 ? random() % 0x22 : random() % 256);
        size_t offset = random() % 8;
        std::string padded = std::string(offset, 'x') + text;
        ASSERT_EQ(countControlBytes(padded.data() + offset, text.size()), plainControlCount(text)) << i;
    }
}

}  // namespace
