// Any bytes as the text of a colour. A text without its marks is black, and what is written of a colour reads back.
#include "karstring.h"
#include "vcolor.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

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
    if (close == std::string::npos && rgb != 0)
        std::abort();
    if (rgb < -2147483647 - 1 || rgb > 2147483647)
        std::abort();

    karString written;
    errno = 0;
    if (vColorName::Conv(rgb, written, 0) != 0 ||
        vColorName::Conv(static_cast<const karString &>(written)) != (rgb & 0xFFFFFF))
        std::abort();
    return 0;
}
