// Any bytes as the text of a colour. A text without its marks is black, and what is written of a colour reads back.
#include "fuzzinput.h"
#include "karstring.h"
#include "vcolor.h"

#include <cerrno>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(data, data + size);
    errno = 0;
    const long rgb = vColorName::Conv(text.c_str());

    const std::string seen = text.c_str(); // up to the first NUL
    const std::size_t name = seen.find("RGB");
    const std::size_t open = name == std::string::npos ? name : seen.find('(', name);
    const std::size_t first = open == std::string::npos ? open : seen.find(',', open);
    const std::size_t second = first == std::string::npos ? first : seen.find(',', first + 1);
    const std::size_t close = second == std::string::npos ? second : seen.find(')', second + 1);
    FUZZ_REQUIRE(close != std::string::npos || rgb == 0);
    FUZZ_REQUIRE(rgb >= -2147483647 - 1 && rgb <= 2147483647);

    karString written;
    errno = 0;
    FUZZ_REQUIRE(vColorName::Conv(rgb, written, 0) == 0);
    FUZZ_REQUIRE(vColorName::Conv(static_cast<const karString &>(written)) == (rgb & 0xFFFFFF));
    return 0;
}
