// Texts that a host has written over the end of: they end with their buffers. Comparison, searches, tokens and trimming
// beside plain models, and arguments that lie in such a text.
#include "support/textprobe.h"
#include "testrandom.h"
#include "teststeps.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

std::string bytesOf(const karString &s) { return std::string(TextProbe::bytes(s), TextProbe::size(s)); }

// What stands from index `from` on before the first NUL or the end.
std::string textFrom(const std::string &bytes, std::size_t from)
{
    return from < bytes.size() ? bytes.substr(from, bytes.find('\0', from) - from) : "";
}

int asIndex(std::size_t found, std::size_t offset = 0)
{
    return found == std::string::npos ? -1 : static_cast<int>(found + offset);
}

// The first byte, as unsigned, in which they differ; the end of a text counts as NUL.
int plainOrder(const std::string &a, const std::string &b)
{
    for (std::size_t i = 0;; ++i) {
        const int left = i < a.size() ? static_cast<unsigned char>(a[i]) : 0;
        const int right = i < b.size() ? static_cast<unsigned char>(b[i]) : 0;
        if (left != right || left == 0)
            return left - right;
    }
}

class Texts {
public:
    explicit Texts(std::uint64_t seed) : random(seed) {}

    char character() { return "ab ,\t\x80\xff"[random.below(7)]; }
    // Any bytes, which more than half of the time end without a terminator.
    void write(karString &s)
    {
        const unsigned rare = random.below(2) ? 10 : 1000;
        for (unsigned i = 0; i < TextProbe::size(s); ++i)
            s[i] = random.below(rare) ? character() : '\0';
    }
    std::string set()
    {
        std::string result(random.below(4), '\0');
        for (char &c : result)
            c = character();
        return result;
    }

    TestRandom random;

private:
    HeldPages pages;
};

// The guard of 200, which is \xc8, stands directly behind 192 bytes.
const std::string head = "\xc8" + std::string(183, 'x');
const std::string whole = head + "abcdefgh";

// No copy of it would do: a copy has a terminator.
struct FullString : karString {
    FullString() : karString(whole.substr(0, 191).c_str(), 0u) { (*this)[191] = 'h'; }
};

} // namespace

TEST(UnterminatedString, ComparesAsThePlainModel)
{
    const std::uint64_t seed = 417;
    Texts texts(seed);
    for (int step = 0, steps = testSteps(200000); step < steps; ++step) {
        karString a(texts.random.below(40));
        karString b(texts.random.below(40));
        texts.write(a);
        texts.write(b);
        if (texts.random.below(2)) { // with the same start
            const unsigned common = std::min(a.size(), b.size());
            for (unsigned i = 0; i < common; ++i)
                b[i] = TextProbe::bytes(a)[i];
            if (texts.random.below(2))
                b[texts.random.below(common)] = texts.character();
        }
        TextProbe::setCached(b, texts.random.below(b.size() + 1)); // which doesn't count
        const std::string text = textFrom(bytesOf(b), 0);
        const int order = plainOrder(textFrom(bytesOf(a), 0), text);
        const bool same = (a < b) == (order < 0) && (a > b) == (order > 0) && (a <= b) == (order <= 0) &&
                          (a >= b) == (order >= 0) && (a == b) == (order == 0) && (a != b) == (order != 0);
        const char *const plain = text.c_str();
        const bool samePlain = (a < plain) == (order < 0) && (a > plain) == (order > 0) &&
                               (a <= plain) == (order <= 0) && (a >= plain) == (order >= 0) &&
                               (a == plain) == (order == 0) && (a != plain) == (order != 0);
        ASSERT_TRUE(same && samePlain) << "seed " << seed << ", step " << step;
        ASSERT_TRUE(a == a && !(a < a)) << "seed " << seed << ", step " << step;
    }
}

TEST(UnterminatedString, SearchesAsThePlainModel)
{
    const std::uint64_t seed = 418;
    Texts texts(seed);
    TestRandom &random = texts.random;
    for (int step = 0, steps = testSteps(200000); step < steps; ++step) {
        karString s(random.below(24));
        for (unsigned i = 0; i < s.size(); ++i)
            s[i] = random.below(12) ? texts.character() : '\0';
        const std::string bytes = bytesOf(s);
        const std::string text = textFrom(bytes, 0);
        // The cached length may be above the text's.
        const auto length =
            static_cast<unsigned>(text.size()) + random.below(static_cast<unsigned>(bytes.size() - text.size()) + 1);
        TextProbe::setCached(s, length);
        const std::string set = texts.set();
        const char c = texts.character();

        const int from = random.between(-2, static_cast<int>(bytes.size()) + 2);
        const auto start = static_cast<std::size_t>(from);
        const bool isValid = from >= 0 && start < length;
        const std::string rest = isValid ? textFrom(bytes, start) : "";
        const std::size_t ending = isValid ? bytes.find('\0', start) : std::string::npos;
        const bool forward =
            s.karstrchr(c, from) == (isValid ? asIndex(rest.find(c), start) : -1) &&
            s.karstrchr('\0', from) == asIndex(ending) &&
            s.karstrchr(set.c_str(), from) == (!isValid      ? -1
                                               : set.empty() ? asIndex(ending)
                                                             : asIndex(rest.find_first_of(set), start)) &&
            s.karstrstr(set.c_str(), from) == (isValid ? asIndex(rest.find(set), start) : -1);
        ASSERT_TRUE(forward) << "seed " << seed << ", step " << step;

        const unsigned end = from == -1 ? length : static_cast<unsigned>(from);
        const bool hasPart = from >= -1 && end <= length;
        const std::string part = hasPart ? text.substr(0, end) : "";
        std::size_t smallest = std::string::npos;
        for (const char one : set)
            smallest = std::min(smallest, part.rfind(one));
        const bool backward = s.karstrrchr(c, from) == asIndex(part.rfind(c)) &&
                              s.karstrrchr(set.c_str(), from) == asIndex(smallest) &&
                              s.karstrrchr('\0', from) == (hasPart ? static_cast<int>(part.size()) : -1);
        ASSERT_TRUE(backward) << "seed " << seed << ", step " << step;
        const std::size_t found = text.find(set);
        ASSERT_EQ(s.vstrstr(set.c_str()), found == std::string::npos ? nullptr : TextProbe::bytes(s) + found)
            << "seed " << seed << ", step " << step;
        ASSERT_EQ(bytesOf(s), bytes) << "seed " << seed << ", step " << step;
    }
}

TEST(UnterminatedString, GivesTokensAsThePlainModel)
{
    const std::uint64_t seed = 419;
    Texts texts(seed);
    for (int step = 0, steps = testSteps(200000); step < steps; ++step) {
        karString s(texts.random.below(24));
        for (unsigned i = 0; i < s.size(); ++i)
            s[i] = texts.random.below(12) ? texts.character() : '\0';
        const unsigned size = s.size();
        while (s.length() > 0) {
            const std::string bytes = bytesOf(s);
            const std::string text = textFrom(bytes, 0);
            const std::string set = texts.set();
            const std::size_t found = set.empty() ? std::string::npos : text.find_first_of(set);
            const std::string token = text.substr(0, found);
            const auto room = static_cast<unsigned>(std::max<std::size_t>(16, (token.size() + 8) / 8 * 8));
            ASSERT_TRUE(hasState(s.karstrtok(set.c_str()), token, static_cast<unsigned>(token.size()), room))
                << "seed " << seed << ", step " << step;
            const std::string rest = found == std::string::npos ? "" : textFrom(bytes, found + 1);
            ASSERT_TRUE(hasState(s, rest, static_cast<unsigned>(rest.size()), size))
                << "seed " << seed << ", step " << step;
        }
    }
}

TEST(UnterminatedString, EndsAsAnArgumentOfItsOwnWithItsBuffer)
{
    FullString s;
    const char *const own = TextProbe::bytes(s);
    EXPECT_EQ(s == own, 1);
    EXPECT_EQ(s > own + 184, 1);
    EXPECT_TRUE(hasState(s & own, whole + whole, 384, 400)); // adjust(393)
    EXPECT_EQ(s.vstrstr(own + 190), own + 190);
    EXPECT_EQ(s.karstrstr(own + 191, 0), 191);
    EXPECT_EQ(s.karstrchr(own + 191, 0), 191);
    EXPECT_EQ(s.karstrchr(own + 190, 0), 190);
    EXPECT_EQ(s.karstrrchr(own + 190, -1), 190);
    EXPECT_TRUE(hasState(s.notIn(own + 186), head + "ab", 186, 192));
    karString::searchStruct table[] = {{own + 1, 1}, {own, 2}, {nullptr, 0}};
    int value = 0;
    EXPECT_EQ(s.searchValue(table, value), 0);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(s == whole.c_str(), 1);
}

TEST(UnterminatedString, EndsAsASourceOfItsOwnWithItsBuffer)
{
    const auto after = [](auto change, const std::string &text, unsigned cached, unsigned size) {
        FullString s;
        change(s, TextProbe::bytes(s));
        return hasState(s, text, cached, size);
    };
    EXPECT_TRUE(after([](karString &s, const char *own) { s = own + 187; }, "defgh", 5, 192));
    EXPECT_TRUE(after([](karString &s, const char *own) { s = own; }, whole, 192, 208)); // adjust(201)
    EXPECT_TRUE(after([](karString &s, const char *own) { s &= own; }, whole + whole, 384, 392));
    EXPECT_TRUE(after([](karString &s, const char *own) { s &= own + 189; }, whole + "fgh", 195, 200));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.ncat(own + 190, 5); }, whole + "gh", 197, 200));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.ncat(own + 184, 3); }, whole + "abc", 195, 200));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.ncopy(own + 186, 6); }, "cdefgh", 6, 192));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.ncopy(own, 200); }, whole, 192, 200));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.ncopy(own, 186, -1); }, "cdefgh", 6, 192));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.ncopy(own, 188, 192); }, "efgh", 5, 192));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.rtrim(own + 188); }, head + "abcd", 188, 192));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.trim(own + 185); }, head + "a", 185, 192));
    EXPECT_TRUE(after([](karString &s, const char *own) { s.karstrtok(own + 189); }, "gh", 2, 192));
    FullString stays;
    stays.ltrim(TextProbe::bytes(stays) + 191);
    EXPECT_EQ(stays == whole.c_str(), 1);
}
