// What the program says, in the user's language.
#ifndef TEXTS_H
#define TEXTS_H

#include <krkgeneral.h>

#include <cstdarg>
#include <string>

enum class Language {
    English,
    German
};

/// By `choice` ("en" or "de"), or with an empty choice by the environment (the first of `LC_ALL`, `LC_MESSAGES` and
/// `LANG` that is set). English where neither tells.
Language chooseLanguage(const std::string &choice);

/// The English text is the key. Gives the text itself where the language has none of its own.
const char *translated(Language language, const char *english);

/// The bytes of a text of the library. Throws `std::bad_alloc` where it found no memory and is a null pointer.
const char *bytesOf(const karString &text);

/// The text in the language of the console that is installed, by way of the library. Throws `std::bad_alloc`.
karString text(const char *english);

/// `text` as a format with its arguments. Throws `std::bad_alloc`.
karString textOf(const char *english, ...);

/// A format with its arguments.
std::string expanded(const char *format, va_list arguments);

#endif
