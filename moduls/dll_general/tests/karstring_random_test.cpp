// A million random operations on texts beside a plain model that keeps every byte, the cached length and the size.
#include "textprobe.h"
#include "testrandom.h"
#include "teststeps.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr unsigned mark = 0xFFFF;

unsigned sizeFor(unsigned n) { return n % 8 == 0 ? n : n + 8 - n % 8; }

// The stated steps on an array of bytes; a new array is zero.
struct PlainText {
    std::vector<char> bytes;
    unsigned cached = 0;

    explicit PlainText(unsigned size = 16) : bytes(size, '\0') {}

    unsigned size() const { return static_cast<unsigned>(bytes.size()); }
    std::string text() const
    {
        std::string result;
        for (std::size_t i = 0; i < bytes.size() && bytes[i]; ++i)
            result += bytes[i];
        return result;
    }
    unsigned measured() const { return static_cast<unsigned>(text().size()); }
    unsigned length()
    {
        if (cached == mark)
            cached = measured();
        return cached;
    }
    unsigned lengthOf() const { return cached == mark ? measured() : cached; }
    void put(unsigned at, const std::string &s, bool terminate = true)
    {
        for (char c : s)
            bytes[at++] = c;
        if (terminate)
            bytes[at] = '\0';
    }
    void renew(unsigned newSize) { bytes.assign(newSize, '\0'); }

    static PlainText copyOf(const PlainText &other, unsigned extra)
    {
        PlainText result;
        result.cached = other.lengthOf();
        unsigned newSize = sizeFor(result.cached + extra + 1);
        if (newSize <= other.measured())
            newSize = sizeFor(other.measured() + 1);
        result.renew(newSize);
        result.put(0, other.text());
        return result;
    }
    static PlainText of(const std::string &s, unsigned extra)
    {
        PlainText result(sizeFor(static_cast<unsigned>(s.size()) + 1 + extra));
        result.put(0, s);
        result.cached = static_cast<unsigned>(s.size());
        return result;
    }

    void assign(const PlainText &other)
    {
        cached = other.lengthOf();
        if (cached >= size())
            renew(other.size());
        if (other.measured() >= size())
            renew(sizeFor(other.measured() + 1));
        put(0, other.text());
    }
    void assign(const std::string &s)
    {
        if (s.size() >= size())
            renew(sizeFor(static_cast<unsigned>(s.size()) + 9));
        put(0, s);
        cached = static_cast<unsigned>(s.size());
    }
    void reSize(unsigned n)
    {
        const unsigned want = n < length() ? length() : n;
        if (size() < want + 1) {
            const std::string old = text();
            renew(sizeFor(want + 1));
            put(0, old);
        }
    }
    void append(const std::string &s)
    {
        const auto n = static_cast<unsigned>(s.size());
        if (size() <= length() + n)
            reSize(length() + n);
        put(cached, s);
        cached += n;
    }
    void appendNul()
    {
        if (size() <= length() + 1)
            reSize(length() + 1);
        bytes[cached] = '\0';
        bytes[cached + 1] = '\0';
        ++cached;
    }
    void ncopy(const std::string &s, unsigned n)
    {
        const unsigned m = s.size() < n ? static_cast<unsigned>(s.size()) : n;
        cached = m;
        if (m >= size())
            renew(sizeFor(m + 1));
        put(0, s.substr(0, m), s.size() >= n);
    }
    void ncopy(const std::string &s, unsigned first, int last)
    {
        if (static_cast<int>(first) > last && last != -1) {
            bytes[0] = '\0';
            cached = 0;
            return;
        }
        std::string part = s.size() > first ? s.substr(first) : std::string();
        const unsigned count =
            last == -1 ? static_cast<unsigned>(part.size()) : static_cast<unsigned>(last) - first + 1;
        part.resize(count, '\0');
        cached = count;
        if (count >= size())
            renew(sizeFor(count + 1));
        put(0, part);
    }
    void ncat(const std::string &s, unsigned n)
    {
        if (n == 0)
            return;
        if (size() <= length() + n)
            reSize(length() + n);
        std::string part = s.substr(0, n);
        part.resize(n, '\0');
        put(cached, part, s.size() >= n);
        cached += n;
    }
    void cut(unsigned n)
    {
        if (n < length()) {
            bytes[n] = '\0';
            cached = n;
        }
    }
    void write(unsigned i, char c)
    {
        if (i < size()) {
            cached = mark;
            bytes[i] = c;
        }
    }
    void trimStart(const std::string &set)
    {
        if (length() == 0 || measured() == 0)
            return;
        const std::string old = text();
        const std::size_t skip = old.find_first_not_of(set);
        if (skip == std::string::npos) {
            cut(0);
        } else if (skip > 0) {
            put(0, old.substr(skip));
            cached = measured();
        }
    }
    void trimEnd(const std::string &set)
    {
        if (length() == 0 || measured() == 0)
            return;
        const std::string old = text();
        std::size_t end = old.size();
        while (end > 1 && set.find(old[end - 1]) != std::string::npos)
            --end;
        bytes[end] = '\0';
        cached = measured();
    }
    std::string upTo(unsigned limit) const { return text().substr(0, limit); }
    std::string from(unsigned i) const { return std::string(bytes.data() + i); } // a last NUL always stands
    PlainText token(const std::string &delimiters)
    {
        PlainText result;
        if (length() == 0)
            return result;
        const std::size_t found = delimiters.empty() ? measured() : text().find_first_of(delimiters);
        const unsigned i = found == std::string::npos ? length() : static_cast<unsigned>(found);
        result.ncopy(text(), i);
        if (i < length())
            ncopy(from(i + 1), 0u, -1);
        else
            cut(0);
        return result;
    }
};

bool same(const karString &s, const PlainText &plain)
{
    return TextProbe::size(s) == plain.size() && TextProbe::cached(s) == plain.cached &&
           std::memcmp(TextProbe::bytes(s), plain.bytes.data(), plain.size()) == 0;
}

int asIndex(std::size_t found, unsigned offset)
{
    return found == std::string::npos ? -1 : static_cast<int>(found + offset);
}

class Sequence {
public:
    explicit Sequence(std::uint64_t seed) : random(seed) {}

    std::string word(unsigned longest)
    {
        std::string result(random.below(longest + 1), '\0');
        for (char &c : result)
            c = "ab ,;\tAB\xe4"[random.below(9)];
        return result;
    }

    // One operation on one of the texts and its model; false if a result or a state differs.
    bool step()
    {
        const unsigned at = random.below(count);
        karString &s = texts[at];
        PlainText &plain = plains[at];
        const unsigned other = random.below(count);
        const bool isFull = plain.size() > 2000;
        operation = isFull ? 1 : random.below(30);
        bool equal = true;
        switch (operation) {
        case 0:
            s = texts[other];
            if (other != at)
                plain.assign(plains[other]);
            break;
        case 1: { // another start
            const std::string w = word(20);
            s.~karString();
            new (&s) karString(w.c_str(), random.below(2) ? 8u : 0u);
            plain = PlainText::of(w, TextProbe::size(s) == sizeFor(static_cast<unsigned>(w.size()) + 1) ? 0 : 8);
            break;
        }
        case 2: {
            const std::string w = word(30);
            s = w.c_str();
            plain.assign(w);
            break;
        }
        case 3:
        case 4: {
            const std::string w = word(12);
            s &= w.c_str();
            plain.append(w);
            break;
        }
        case 5: {
            const std::string w = plains[other].text();
            s &= texts[other];
            plain.append(w);
            break;
        }
        case 6:
            s &= 'q';
            plain.append("q");
            break;
        case 7:
            s &= '\0';
            plain.appendNul();
            break;
        case 8: {
            const std::string w = word(20);
            const unsigned n = random.below(24);
            s.ncopy(w.c_str(), n);
            plain.ncopy(w, n);
            break;
        }
        case 9: {
            const std::string w = word(20);
            const unsigned first = random.below(24);
            const int last = random.between(-2, 26);
            s.ncopy(w.c_str(), first, last);
            plain.ncopy(w, first, last);
            break;
        }
        case 10: {
            const std::string w = word(12);
            const unsigned n = random.below(16);
            s.ncat(w.c_str(), n);
            plain.ncat(w, n);
            break;
        }
        case 11: {
            const unsigned n = random.below(40);
            s.cut(n);
            plain.cut(n);
            break;
        }
        case 12: {
            const unsigned n = random.below(50);
            equal = s.reSize(n) + 1 == (plain.reSize(n), plain.size());
            break;
        }
        case 13: { // never the last byte, so that a NUL stands
            const unsigned i = random.below(40);
            const char c = "a \0"[random.below(3)];
            if (i + 1 == plain.size())
                break;
            s[i] = c;
            plain.write(i, c);
            break;
        }
        case 14:
            equal = s.length() == plain.length();
            break;
        case 15:
            equal = s.vstrlen() == plain.measured() && s.size() == plain.size();
            break;
        case 16: {
            const unsigned extra = random.below(12);
            equal = same(karString(s, extra), PlainText::copyOf(plain, extra));
            break;
        }
        case 17: {
            const std::string w = plains[other].text();
            PlainText sum = PlainText::copyOf(plain, 8);
            sum.append(w);
            equal = same(s & texts[other], PlainText::copyOf(sum, 8));
            break;
        }
        case 18: {
            const std::string a = plain.text();
            const std::string b = plains[other].text();
            equal = (s < texts[other]) == (a < b) && (s == texts[other]) == (a == b) && (s >= b.c_str()) == (a >= b) &&
                    (s != b.c_str()) == (a != b);
            break;
        }
        case 19: {
            const std::string set = word(3);
            s.ltrim(set.c_str());
            plain.trimStart(set);
            break;
        }
        case 20: {
            const std::string set = word(3);
            s.rtrim(set.c_str());
            plain.trimEnd(set);
            break;
        }
        case 21:
            s.trim();
            plain.trimStart(" \t");
            plain.trimEnd(" \t");
            break;
        case 22: {
            const std::string set = word(3);
            PlainText expected = plain.token(set);
            equal = same(s.karstrtok(set.c_str()), expected);
            break;
        }
        case 23: {
            const int from = random.between(-1, 30);
            const bool valid = from >= 0 && static_cast<unsigned>(from) < plain.length();
            const std::string rest = valid ? plain.from(static_cast<unsigned>(from)) : "";
            const std::string w = word(2);
            const auto offset = static_cast<unsigned>(from);
            const int expected = valid ? asIndex(rest.find(w), offset) : -1;
            const int expectedSet = !valid ? -1 : asIndex(w.empty() ? rest.size() : rest.find_first_of(w), offset);
            const int expectedChar = valid ? asIndex(rest.find('a'), offset) : -1;
            equal = s.karstrstr(w.c_str(), from) == expected && s.karstrchr(w.c_str(), from) == expectedSet &&
                    s.karstrchr('a', from) == expectedChar;
            break;
        }
        case 24: {
            const int limit = random.between(-2, 30);
            const unsigned end = limit == -1 ? plain.length() : static_cast<unsigned>(limit);
            const bool valid = limit >= -1 && end <= plain.length();
            const std::string part = valid ? plain.upTo(end) : "";
            const std::string set = word(3);
            std::size_t smallest = std::string::npos;
            for (const char c : set)
                smallest = std::min(smallest, part.rfind(c));
            const int expectedText = !valid || plain.length() == 0 ? -1
                                     : part.empty()                ? static_cast<int>(plain.length()) - 1
                                                                   : 0;
            equal = s.karstrrchr('a', limit) == asIndex(part.rfind('a'), 0) &&
                    s.karstrrchr(set.c_str(), limit) == asIndex(smallest, 0) &&
                    s.karstrrstr("a", limit) == expectedText;
            break;
        }
        case 25: {
            const unsigned limit = random.below(30);
            const bool valid = limit < plain.measured();
            const std::size_t found = valid ? plain.upTo(limit).rfind('a') : std::string::npos;
            const char *const expected = found == std::string::npos ? nullptr : TextProbe::bytes(s) + found;
            equal = s.vstrrchr('a', limit) == expected && s.getChar(limit) == (valid ? plain.text()[limit] : '\0');
            break;
        }
        case 26: {
            const int value = random.anyInt();
            s.format("%d|%s", value, "abc");
            const std::string w = std::to_string(value) + "|abc";
            plain.reSize(36);
            plain.put(0, w);
            plain.cached = static_cast<unsigned>(w.size());
            break;
        }
        case 27: {
            std::string w = plain.text();
            std::string without;
            std::string replaced = w;
            std::string masked;
            for (char &c : replaced) {
                if (c == 'a') {
                    c = 'z';
                    masked += "\\\\";
                    masked += 'a';
                } else {
                    without += c;
                    masked += c;
                }
            }
            equal = same(s.removechar('a'), PlainText::of(without, 8)) &&
                    same(s.replacechar('a', 'z'), PlainText::of(replaced, 8)) &&
                    same(s.maskchar('a', 2), PlainText::of(masked, 8)) &&
                    s.countchar('a') == static_cast<int>(w.size() - without.size());
            break;
        }
        case 28: {
            const std::string set = word(3);
            std::string kept;
            for (const char c : plain.text())
                if (set.find(c) == std::string::npos)
                    kept += c;
            PlainText expected;
            expected.append(kept);
            equal = same(s.notIn(set.c_str()), expected);
            break;
        }
        default: {
            const unsigned end = plain.length();
            for (unsigned i = 0; i < end; ++i)
                if (plain.bytes[i] >= 'a' && plain.bytes[i] <= 'z')
                    plain.bytes[i] = static_cast<char>(plain.bytes[i] - 'a' + 'A');
            s.toUpper();
            break;
        }
        }
        return equal && same(s, plain);
    }

    unsigned operation = 0;

private:
    static constexpr unsigned count = 4;
    TestRandom random;
    karString texts[count];
    PlainText plains[count];
};

} // namespace

TEST(KarString, AMillionOperationsFollowThePlainModel)
{
    const std::uint64_t seed = 41;
    Sequence sequence(seed);
    for (int step = 0, steps = testSteps(1000000); step < steps; ++step)
        ASSERT_TRUE(sequence.step()) << "seed " << seed << ", step " << step << ", operation " << sequence.operation;
}
