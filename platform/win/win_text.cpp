#include "win_text.h"

#include <windows.h>

namespace varnel::win {

namespace {

std::wstring decode(const std::string &bytes, unsigned codePage)
{
    if (bytes.empty())
        return {};
    const int size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
    if (length <= 0)
        return {};
    std::wstring out(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(codePage, 0, bytes.data(), size, out.data(), length);
    return out;
}

std::string encode(const std::wstring &text, unsigned codePage)
{
    if (text.empty())
        return {};
    const int size = static_cast<int>(text.size());
    const int length =
        WideCharToMultiByte(codePage, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    if (length <= 0)
        return {};
    std::string out(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), size, out.data(), length, nullptr, nullptr);
    return out;
}

} // namespace

std::string toUtf8(const std::wstring &text)
{
    return encode(text, CP_UTF8);
}

std::wstring fromUtf8(const std::string &text)
{
    return decode(text, CP_UTF8);
}

std::wstring fromCodePage(const std::string &bytes, unsigned codePage)
{
    return decode(bytes, codePage);
}

std::string toCodePage(const std::wstring &text, unsigned codePage)
{
    return encode(text, codePage);
}

} // namespace varnel::win
