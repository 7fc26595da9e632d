// Trimming, searching and taking tokens with any text and any set beside plain texts.
#include "fuzzinput.h"
#include "karstring.h"

#include <algorithm>

namespace {

std::string textOf(const karString &s) { return static_cast<const char *>(s); }

int asIndex(std::size_t found) { return found == std::string::npos ? -1 : static_cast<int>(found); }

std::string withoutStart(const std::string &text, const std::string &set)
{
    const std::size_t first = text.find_first_not_of(set);
    return first == std::string::npos ? "" : text.substr(first);
}

std::string withoutEnd(std::string text, const std::string &set)
{
    while (text.size() > 1 && set.find(text.back()) != std::string::npos)
        text.pop_back();
    return text;
}

void checkTrimming(const std::string &text, const std::string &set)
{
    karString start(text.c_str());
    start.ltrim(set.c_str());
    FUZZ_REQUIRE(textOf(start) == withoutStart(text, set) && start.length() == textOf(start).size());
    karString end(text.c_str());
    end.rtrim(set.c_str());
    FUZZ_REQUIRE(textOf(end) == withoutEnd(text, set) && end.length() == textOf(end).size());
    karString both(text.c_str());
    both.trim(set.c_str());
    FUZZ_REQUIRE(textOf(both) == withoutEnd(withoutStart(text, set), set));
    std::string kept = text;
    kept.erase(std::remove_if(kept.begin(), kept.end(), [&](char c) { return set.find(c) != std::string::npos; }),
               kept.end());
    FUZZ_REQUIRE(textOf(karString(text.c_str()).notIn(set.c_str())) == kept);
}

void checkSearching(const std::string &text, const std::string &set, int index)
{
    const karString s(text.c_str());
    const auto length = static_cast<int>(text.size());
    const char c = set.empty() ? 'x' : set[0];
    const bool forward = index >= 0 && index < length;
    const auto from = static_cast<std::size_t>(index);
    FUZZ_REQUIRE(s.karstrstr(set.c_str(), index) == (forward ? asIndex(text.find(set, from)) : -1));
    FUZZ_REQUIRE(s.karstrchr(c, index) == (forward ? asIndex(text.find(c, from)) : -1));
    const int inSet = !forward ? -1 : set.empty() ? length : asIndex(text.find_first_of(set, from));
    FUZZ_REQUIRE(s.karstrchr(set.c_str(), index) == inSet);

    const int limit = index == -1 ? length : index;
    const bool backward = limit >= 0 && limit <= length;
    const std::string part = backward ? text.substr(0, static_cast<std::size_t>(limit)) : "";
    FUZZ_REQUIRE(s.karstrrchr(c, index) == (backward ? asIndex(part.rfind(c)) : -1));
    std::size_t smallest = std::string::npos;
    for (const char one : set)
        smallest = std::min(smallest, part.rfind(one));
    FUZZ_REQUIRE(s.karstrrchr(set.c_str(), index) == asIndex(smallest));
    const int own = !backward || length == 0 ? -1 : part.empty() ? length - 1 : 0;
    FUZZ_REQUIRE(s.karstrrstr(set.c_str(), index) == own);
    FUZZ_REQUIRE(textOf(s) == text);
}

void checkTokens(const std::string &text, const std::string &delimiters)
{
    karString s(text.c_str());
    std::string rest = text;
    while (!s.isNull()) {
        const std::size_t end =
            delimiters.empty() ? rest.size() : std::min(rest.find_first_of(delimiters), rest.size());
        FUZZ_REQUIRE(textOf(s.karstrtok(delimiters.c_str())) == rest.substr(0, end));
        rest.erase(0, end + 1);
        FUZZ_REQUIRE(textOf(s) == rest && s.length() == rest.size());
    }
    FUZZ_REQUIRE(rest.empty());
    // By delimiters that lie in the text itself.
    karString own(text.c_str());
    const karString &constant = own;
    const std::string last = text.empty() ? "" : text.substr(text.size() - 1);
    const std::string token =
        textOf(own.karstrtok(static_cast<const char *>(constant) + (text.empty() ? 0 : text.size() - 1)));
    FUZZ_REQUIRE(text.empty() ? token.empty() : token == text.substr(0, text.find(last)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t count)
{
    FuzzInput input(bytes, count);
    const int index = static_cast<int>(input.below(40)) - 2;
    const std::string set = input.text(input.below(5));
    const std::string text = input.rest();
    checkTrimming(text, set);
    checkSearching(text, set, index);
    checkTokens(text, set);
    return 0;
}
