#pragma once

#include <string>

namespace varnel::win {

// The backend speaks UTF-16 to Windows and UTF-8 to its callers.
std::string toUtf8(const std::wstring &text);
std::wstring fromUtf8(const std::string &text);

// Text in an 8-bit code page (CP_ACP, CP_OEMCP or a number such as 437) as UTF-16.
std::wstring fromCodePage(const std::string &bytes, unsigned codePage);
// UTF-16 in an 8-bit code page; characters it cannot hold become the code page's default.
std::string toCodePage(const std::wstring &text, unsigned codePage);

} // namespace varnel::win
