#pragma once
// Text as it comes from other programs' files: UTF-8 when it is valid
// UTF-8, otherwise the Windows code page such files were written in, so that
// everything the program holds and writes is valid UTF-8.

#include <string>
#include <string_view>

namespace tervalo {

// Whether the bytes are well-formed UTF-8 (no overlong forms, no surrogates,
// nothing past U+10FFFF).
bool isValidUtf8(std::string_view bytes);

// The bytes unchanged when they are valid UTF-8; otherwise read as
// Windows-1252 (a Latin-1 degree sign 0xB0 becomes U+00B0) and given as UTF-8.
std::string decodeText(std::string_view bytes);

}  // namespace tervalo
